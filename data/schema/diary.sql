-- The diary: the mobs of its entries, and the definitions of the fields that it records.

-- MobID is a [Mob Details ID] of the main database; old numbers stay after a delete there.
CREATE TABLE [AnimalMultipleList] (
    [MobID] LONG
);
CREATE INDEX [AnimalMob] ON [AnimalMultipleList] ([MobID]);

CREATE TABLE [Field Definition] (
    [Field Caption] TEXT(50) NOT NULL,
    [Unit] TEXT(50) NOT NULL,
    [Equation] TEXT(255) NOT NULL,
    [ImperialFieldCaption] TEXT(50),
    [ImperialFieldUnits] TEXT(50),
    [ImperialFieldEquation] TEXT(255),
    [MetricFieldCaption] TEXT(50),
    [MetricFieldUnits] TEXT(50),
    [MetricFieldEquation] TEXT(255)
);
