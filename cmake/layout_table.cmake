# cmake -DFILES="a.ui;b.ui" -DOUTPUT=table.cpp -P layout_table.cmake
set(includes "")
set(layouts "")
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME_WE)
  file(READ ${file} text)
  string(REGEX MATCH "<class>([A-Za-z0-9_]+)</class>" ignored "${text}")
  set(class ${CMAKE_MATCH_1})
  string(REGEX MATCHALL "<widget class=\"[^\"]*\" name=\"[^\"]*\"" widgets "${text}")
  set(names "")
  foreach(widget IN LISTS widgets)
    string(REGEX REPLACE ".* name=\"([^\"]*)\"" "\\1" widget_name "${widget}")
    string(APPEND names "    \"${widget_name}\",\n")
  endforeach()
  string(APPEND includes "#include \"ui_${name}.h\"\n")
  string(APPEND layouts "constexpr const char* k_${name}_names[] = {\n${names}};\n"
                        "void Build_${name}(QWidget& widget) {\n"
                        "    Ui::${class} ui;\n    ui.setupUi(&widget);\n}\n")
  string(APPEND entries "    {\"${name}\", k_${name}_names, Build_${name}},\n")
endforeach()
file(WRITE ${OUTPUT} "// Made by cmake/layout_table.cmake from the Designer files.
#include \"platform/qt/layouts.h\"

${includes}
namespace quillary::qt {
namespace {
${layouts}
constexpr Layout kLayouts[] = {
${entries}};
} // namespace

std::span<const Layout> Layouts() { return kLayouts; }

} // namespace quillary::qt
")
