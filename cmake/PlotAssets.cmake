# Sets plot_assets to the source file with the page of 'sensorfile plot', and has_plot. uPlot, which draws its
# panels, comes from npm when the project is configured and is part of the program: no page loads
# anything. Without npm or a network the program builds all the same and says that it cannot plot.
option(QUORIL_PLOT "Build 'sensorfile plot', for which npm gets uPlot" ON)

set(uplot_version 1.6.32)
# SHA-512 of the package: a new version needs a new one, as 'npm view uplot dist.integrity' tells.
set(uplot_hash
  2883159c6ebccefbb95d751b0b82d010f9e1c0ec41b8bc96d401eda66e882935c89a46cb824332fa369b8cb8122cc6ac36e186cd09bf7a9ded3a4c93c6989023)

# Build folders beside each other share what was fetched.
cmake_path(GET PROJECT_BINARY_DIR PARENT_PATH beside)
if(NOT beside STREQUAL "${PROJECT_SOURCE_DIR}/build")
  set(beside "${PROJECT_BINARY_DIR}")
endif()
set(QUORIL_ASSETS "${beside}/_assets" CACHE PATH "Where fetched packages are kept")

# fetch_uplot(FOLDER): sets it to the unpacked package, or to nothing and tells why.
function(fetch_uplot result)
  set(${result} "" PARENT_SCOPE)
  set(archive "${QUORIL_ASSETS}/uplot-${uplot_version}.tgz")
  set(folder "${QUORIL_ASSETS}/uplot-${uplot_version}")
  set(hash "")
  if(EXISTS "${archive}")
    file(SHA512 "${archive}" hash)
  endif()
  if(NOT hash STREQUAL uplot_hash)
    find_program(QUORIL_NPM npm)
    if(NOT QUORIL_NPM)
      message(STATUS "npm is not there: sensorfile plot is left out")
      return()
    endif()
    file(MAKE_DIRECTORY "${QUORIL_ASSETS}")
    execute_process(
      COMMAND "${QUORIL_NPM}" pack "uplot@${uplot_version}" --ignore-scripts --fetch-retries=0
        --loglevel=error --no-update-notifier
      WORKING_DIRECTORY "${QUORIL_ASSETS}"
      RESULT_VARIABLE code OUTPUT_QUIET ERROR_VARIABLE errors TIMEOUT 120)
    if(NOT code EQUAL 0)
      message(STATUS "npm cannot get uPlot: sensorfile plot is left out\n${errors}")
      return()
    endif()
    file(SHA512 "${archive}" hash)
    if(NOT hash STREQUAL uplot_hash)
      message(FATAL_ERROR "${archive} is not the package that was expected: remove it and try again")
    endif()
  endif()
  if(NOT EXISTS "${folder}/package/LICENSE")
    file(ARCHIVE_EXTRACT INPUT "${archive}" DESTINATION "${folder}")
  endif()
  set(${result} "${folder}/package" PARENT_SCOPE)
endfunction()

set(uplot "")
if(QUORIL_PLOT)
  fetch_uplot(uplot)
endif()
if(uplot)
  set(has_plot TRUE)
  set(plot_assets "${PROJECT_BINARY_DIR}/tools/PlotAssets.cpp")
  set(plot_files
    "${PROJECT_SOURCE_DIR}/tools/plot/page.html" "${PROJECT_SOURCE_DIR}/tools/plot/page.css"
    "${PROJECT_SOURCE_DIR}/tools/plot/page.js" "${uplot}/dist/uPlot.min.css"
    "${uplot}/dist/uPlot.iife.min.js" "${uplot}/LICENSE")
  set(embed "${CMAKE_CURRENT_LIST_DIR}/EmbedPlotAssets.cmake")
  add_custom_command(OUTPUT "${plot_assets}"
    COMMAND "${CMAKE_COMMAND}" "-DOUTPUT=${plot_assets}" -P "${embed}" -- ${plot_files}
    DEPENDS ${plot_files} "${embed}"
    COMMENT "Embedding the page of sensorfile plot" VERBATIM)
else()
  set(has_plot FALSE)
  set(plot_assets plot/NoPlotAssets.cpp)
endif()
