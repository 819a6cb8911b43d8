# cmake -DOUTPUT=FILE.cpp -P EmbedPlotAssets.cmake -- FILE...
# Writes files, in the order of the members of PlotAssets, as a source file. They are arrays of
# bytes, since compilers limit the length of string literals.
set(names page style script uplotStyle uplotScript uplotLicence)
set(files "")
set(is_file FALSE)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
  if(is_file)
    list(APPEND files "${CMAKE_ARGV${i}}")
  elseif(CMAKE_ARGV${i} STREQUAL "--")
    set(is_file TRUE)
  endif()
endforeach()

string(REPEAT "." 80 line)  # 16 bytes of 5 characters
set(arrays "")
set(members "")
foreach(name file IN ZIP_LISTS names files)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(${line})" "\\1\n" bytes "${bytes}")
  string(APPEND arrays "constexpr unsigned char ${name}[] = {\n${bytes}};\n\n")
  string(APPEND members "        textOf(${name}),\n")
endforeach()

file(WRITE "${OUTPUT}" "// Made from tools/plot and from uPlot when the project was built.
#include \"tools/plot/PlotAssets.hpp\"

#include <cstddef>

namespace SensorFileTool {

namespace {

${arrays}template <std::size_t kSize>
std::string_view textOf(const unsigned char (&bytes)[kSize]) {
    return {reinterpret_cast<const char*>(bytes), kSize};
}

}  // namespace

const PlotAssets* findPlotAssets() {
    static const PlotAssets kAssets = {
${members}    };
    return &kAssets;
}

}  // namespace SensorFileTool
")
