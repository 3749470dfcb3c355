# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# The five library folders, compiled once: into the shared object and, as objects, into the tests,
# which reach the internal functions that the shared object hides.

set(FX_PUBLIC_HEADERS intf.h address_services.h records.h entry_point.h)
list(TRANSFORM FX_PUBLIC_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/driver/)

add_library(fx_driver_objects OBJECT
    address/address_check.cpp
    address/catalogue.cpp
    address/multi_copy.cpp
    address/register_types.cpp
    cache/data_areas.cpp
    cache/notification.cpp
    cache/polled_values.cpp
    cache/read_values.cpp
    cache/recipe_list.cpp
    cache/recipe_words.cpp
    cache/write_values.cpp
    driver/area_index.cpp
    driver/mitsubishi_fx1s.cpp
    driver/parameters.cpp
    driver/request_queue.cpp
    driver/set_up.cpp
    plan/address_merge.cpp
    plan/conditional_reads.cpp
    protocol/end_of_exchange.cpp
    protocol/error_report.cpp
    protocol/frame_codec.cpp
    protocol/recipe_requests.cpp
    protocol/reply_decoding.cpp
    protocol/reply_handling.cpp
    protocol/send_scheduling.cpp)
fx_compile_as_one(fx_driver_objects)
# An object of its own all the same: a test replaces it.
set_source_files_properties(protocol/recipe_requests.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
target_include_directories(fx_driver_objects PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(fx_driver_objects PUBLIC fx_qt_core
                      PRIVATE fx_warnings fx_hardening)
set_target_properties(fx_driver_objects PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)

# What the tests link: with FX_COVERAGE the same sources again, measured, so that the shared object
# and the tools are as users get them.
if(FX_COVERAGE)
    get_target_property(driver_sources fx_driver_objects SOURCES)
    add_library(fx_tested_objects OBJECT ${driver_sources})
    fx_compile_as_one(fx_tested_objects)
    target_include_directories(fx_tested_objects PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(fx_tested_objects PUBLIC fx_qt_core PRIVATE fx_warnings)
    # An exception edge at every call is no branch of ours.
    target_compile_options(fx_tested_objects PRIVATE --coverage -O0 -fno-exceptions)
    target_link_options(fx_tested_objects INTERFACE --coverage)
else()
    add_library(fx_tested_objects ALIAS fx_driver_objects)
endif()

add_library(mitsubishi_fx1s SHARED)
target_link_libraries(mitsubishi_fx1s PRIVATE fx_driver_objects fx_warnings fx_hardening)
target_link_libraries(mitsubishi_fx1s INTERFACE ${FX_QT_CORE})
target_compile_features(mitsubishi_fx1s INTERFACE cxx_std_17)
target_include_directories(mitsubishi_fx1s INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/driver>)
set(export_list ${PROJECT_SOURCE_DIR}/cmake/exports.map)
# Its own symbols come first: another library or the host program may export a `driver`, too.
target_link_options(mitsubishi_fx1s PRIVATE -Wl,--version-script=${export_list} -Wl,-Bsymbolic)
set_target_properties(mitsubishi_fx1s PROPERTIES LINK_DEPENDS ${export_list}
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
