"""A plain reader of the old engine's files, for comparing: it shares nothing with the import but the format."""

import collections
import datetime
import decimal
import pathlib
import struct

Column = collections.namedtuple("Column", "name kind length fixed number order variable offset scale")

BOOL, BYTE, SHORT, LONG, MONEY, SINGLE, DOUBLE, DATE, BINARY, TEXT, OLE, MEMO, GUID, NUMERIC = \
    1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 15, 16


def folder_of_files(environ, root):
    """The real files lie beside the repository, or where QUILLARY_JET_FILES says; None: nowhere."""
    folder = pathlib.Path(environ.get("QUILLARY_JET_FILES", root.parent / "shared" / "mdb"))
    files = [*folder.glob("*.mdb"), *folder.glob("*.accdb"), *folder.glob("suite/*.mdb")] if folder.is_dir() else []
    return folder, sorted(files)


def date_text(days):
    """Days since 30 December 1899; the time counts forward on negative days too."""
    whole = int(days)
    seconds = round(abs(days - whole) * 86400)
    moment = datetime.datetime(1899, 12, 30) + datetime.timedelta(days=whole, seconds=seconds)
    text = f"{moment.year:04}-{moment.month:02}-{moment.day:02}"
    return text + f" {moment:%H:%M:%S}" if seconds % 86400 else text


class JetFile:
    def __init__(self, path):
        self.data = path.read_bytes()
        self.jet3 = self.data[0x14] == 0
        self.size = 2048 if self.jet3 else 4096
        catalog = self.definition(2)
        names = [column.name for column in catalog["columns"]]
        self.objects = [dict(zip(names, row)) for row in self.rows(catalog)]

    def tables(self):
        return {each["Name"]: self.definition(each["Id"] & 0xffffff) for each in self.objects
                if each["Type"] == 1 and not each["Flags"] & 0x80000002 and not each["Name"].startswith("MSys")}

    def page(self, number):
        return self.data[number * self.size:(number + 1) * self.size]

    def text(self, data):
        if self.jet3:
            return data.decode("cp1252")
        if data[:2] != b"\xff\xfe":
            return data.decode("utf-16le")
        # Pieces in turn of one and of two bytes a character, parted by zero bytes.
        pieces = data[2:].split(b"\0")
        return "".join(piece.decode("latin-1" if i % 2 == 0 else "utf-16le") for i, piece in enumerate(pieces))

    def definition(self, number):
        page = self.page(number)
        whole = page
        while following := struct.unpack_from("<I", page, 4)[0]:
            page = self.page(following)
            whole += page[8:]
        if self.jet3:
            counter, variable, count, real, used, at, entry = 16, 23, 25, 31, 35, 43, 18
        else:
            counter, variable, count, real, used, at, entry = 20, 43, 45, 51, 55, 63, 25
        columns, (fields,) = [], struct.unpack_from("<H", whole, count)
        at += struct.unpack_from("<I", whole, real)[0] * (8 if self.jet3 else 12)
        names = at + fields * entry
        for i in range(fields):
            part = whole[at + i * entry:at + (i + 1) * entry]
            shape = ("<BHHH", "<4xB", 13, "<HH", 14) if self.jet3 else ("<B4xHHH", "<xB", 15, "<HH", 21)
            kind, row_number, place, order = struct.unpack_from(shape[0], part)
            scale = part[10 if self.jet3 else 12]
            offset, length = struct.unpack_from(shape[3], part, shape[4])
            size = whole[names] if self.jet3 else struct.unpack_from("<H", whole, names)[0]
            names += 1 if self.jet3 else 2
            columns.append(Column(self.text(whole[names:names + size]), kind, length, part[shape[2]] & 1, row_number,
                                  order, place, offset, scale))
            names += size
        return {"columns": sorted(columns, key=lambda column: column.order), "page": number,
                "variable": struct.unpack_from("<H", whole, variable)[0],
                "counter": struct.unpack_from("<i", whole, counter)[0],
                "map": struct.unpack_from("<I", whole, used)[0]}

    def places(self, page):
        at = 8 if self.jet3 else 12
        (count,) = struct.unpack_from("<H", page, at)
        marks = struct.unpack_from(f"<{count}H", page, at + 2)
        ends = [self.size, *(mark & 0x1fff for mark in marks)]
        return [(mark & 0x1fff, ends[i], mark) for i, mark in enumerate(marks)]

    def row(self, address):
        page = self.page(address >> 8)
        begin, end, _ = self.places(page)[address & 255]
        return page[begin:end]

    def pages(self, table):
        used = self.row(table["map"])
        if used[0] == 0:
            start, maps = struct.unpack_from("<I", used, 1)[0], [used[5:]]
        else:
            start, maps = 0, []
            for (number,) in struct.iter_unpack("<I", used[1:1 + (len(used) - 1) // 4 * 4]):
                maps.append(self.page(number)[4:] if number else bytes(self.size - 4))
        for bits in maps:
            for i, byte in enumerate(bits):
                if byte:
                    yield from (start + i * 8 + bit for bit in range(8) if byte >> bit & 1)
            start += len(bits) * 8

    def rows(self, table):
        for number in self.pages(table):
            page = self.page(number)
            if page[:1] == b"\1" and struct.unpack_from("<I", page, 4)[0] == table["page"]:
                for begin, end, mark in self.places(page):
                    if not mark & 0x4000:
                        yield self.values(table, page[begin:end])

    def values(self, table, row):
        head = 1 if self.jet3 else 2
        count = row[0] if self.jet3 else struct.unpack_from("<H", row)[0]
        end = len(row) - (count + 7) // 8
        mask, places = row[end:], []
        if table["variable"] and self.jet3:
            jumps, number = (len(row) - 1) // 256, row[end - 1]
            last = end - 2 - jumps
            jumps -= (last - number) // 256 < jumps
            used = 0
            for i in range(number + 1):
                while used < jumps and row[end - 2 - used] == i:
                    used += 1
                places.append(row[last - i] + used * 256)
        elif table["variable"]:
            (number,) = struct.unpack_from("<H", row, end - 2)
            places = [struct.unpack_from("<H", row, end - 4 - i * 2)[0] for i in range(number + 1)]
        result = []
        for column in table["columns"]:
            there = column.number < count and mask[column.number // 8] >> column.number % 8 & 1
            if column.kind == BOOL:
                result.append(-1 if there else 0)
            elif not there or (not column.fixed and column.variable + 1 >= len(places)):
                result.append(None)
            elif column.fixed:
                result.append(self.value(column, row[head + column.offset:head + column.offset + column.length]))
            else:
                result.append(self.value(column, row[places[column.variable]:places[column.variable + 1]]))
        return tuple(result)

    def value(self, column, data):
        """As the new store holds it."""
        kinds = {BYTE: "<B", SHORT: "<h", LONG: "<i", MONEY: "<q", SINGLE: "<f", DOUBLE: "<d", DATE: "<d"}
        if column.kind in kinds:
            (number,) = struct.unpack_from(kinds[column.kind], data)
            if column.kind == SINGLE:
                return float("%.7g" % number)
            return date_text(number) if column.kind == DATE else number
        if column.kind in (MEMO, OLE):
            data = self.long_value(data)
        if column.kind in (TEXT, MEMO):
            return self.text(data)
        if column.kind == GUID:
            first, second, third = struct.unpack_from("<IHH", data)
            rest = data[8:16].hex().upper()
            return f"{{{first:08X}-{second:04X}-{third:04X}-{rest[:4]}-{rest[4:]}}}"
        if column.kind == NUMERIC:
            number = 0
            for (word,) in struct.iter_unpack("<I", data[1:17]):
                number = number << 32 | word
            value = float(decimal.Decimal(number).scaleb(-column.scale))
            return -value if data[0] & 0x80 else value
        return data

    def long_value(self, data):
        mark, address = struct.unpack_from("<II", data)
        if mark & 0x80000000:
            return data[12:]
        if mark & 0x40000000:
            return self.row(address)[:mark & 0x3fffffff]
        value = b""
        while address:
            row = self.row(address)
            (address,) = struct.unpack_from("<I", row)
            value += row[4:]
        return value[:mark & 0x3fffffff]
