# What every target of the project shares: language level, warnings, sanitizers, compiler cache and the
# helpers that declare a module, a test program, a benchmark and a fuzz target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set_property(GLOBAL PROPERTY USE_FOLDERS ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # Paths relative to the checkout, so that worktrees share the cache; precompiled headers need the
    # sloppiness that ccache documents for them.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND};-E;env;CCACHE_BASEDIR=${CMAKE_SOURCE_DIR};CCACHE_NOHASHDIR=1;CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime;${CCACHE_PROGRAM}")
endif()

if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    find_program(LLD_PROGRAM NAMES ld.lld-19 ld.lld)
    if(LLD_PROGRAM)
        add_link_options("-fuse-ld=${LLD_PROGRAM}")
    endif()
endif()

if(VANTOR_SANITIZE)
    add_compile_options("-fsanitize=${VANTOR_SANITIZE}" -fno-omit-frame-pointer -fno-sanitize-recover=all -g1)
    add_link_options("-fsanitize=${VANTOR_SANITIZE}")
endif()
if(VANTOR_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Warnings and definitions of our own code; libraries are included as system headers.
add_library(vantor-options INTERFACE)
target_compile_options(vantor-options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Woverloaded-virtual -Werror
    $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>)
target_compile_definitions(vantor-options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# One precompiled header of Qt and the standard library, built once and shared by every target. Clang writes
# no time stamp into it, so that the compiler cache finds it again.
function(vantor_use_pch target)
    if(NOT TARGET vantor-pch)
        file(WRITE "${CMAKE_BINARY_DIR}/vantor-pch.cpp" "")
        add_library(vantor-pch OBJECT "${CMAKE_BINARY_DIR}/vantor-pch.cpp")
        target_link_libraries(vantor-pch PRIVATE vantor-options Qt6::Core Qt6::Gui)
        target_precompile_headers(vantor-pch PRIVATE
            <algorithm> <array> <atomic> <chrono> <cmath> <cstdint> <functional> <map> <memory> <optional>
            <span> <string> <utility> <variant> <vector>
            <QByteArray> <QHash> <QImage> <QLoggingCategory> <QObject> <QPainter> <QPoint> <QRect> <QSet>
            <QString> <QStringList> <QUrl> <QUuid>)
        if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
            target_compile_options(vantor-pch PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
        endif()
    endif()
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
    endif()
    target_precompile_headers(${target} REUSE_FROM vantor-pch)
endfunction()

# vantor_module(SkinKit SOURCES … PUBLIC … PRIVATE …): a static library in src/<name> with the alias
# Vantor::<name>. Its headers are included as "SkinKit/Skin.h".
function(vantor_module name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    add_library(Vantor::${name} ALIAS ${name})
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} vantor-options Qt6::Core Qt6::Gui)
    vantor_use_pch(${name})
endfunction()

# vantor_program(name SOURCES … LINK …)
function(vantor_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} vantor-options Qt6::Core Qt6::Gui)
    vantor_use_pch(${name})
endfunction()

# vantor_test(SkinKit SOURCES … LINK …): the test program <name>Tests; every case is its own ctest test.
function(vantor_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    vantor_program(${name}Tests SOURCES ${ARG_SOURCES} LINK ${ARG_LINK} test-support GTest::gtest GTest::gmock)
    gtest_discover_tests(${name}Tests TEST_PREFIX "${name}/" DISCOVERY_TIMEOUT 60
        PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=co.kelvane.vantor.*.debug=false")
endfunction()

# vantor_bench(SkinKit SOURCES … LINK …): the benchmark program <name>Bench.
function(vantor_bench name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    vantor_program(${name}Bench SOURCES ${ARG_SOURCES} LINK ${ARG_LINK} benchmark::benchmark_main)
endfunction()

# vantor_fuzz(BMPDecoder LINK …): the libFuzzer program fuzz-<name> from fuzz/Fuzz<name>.cpp.
function(vantor_fuzz name)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    vantor_program(fuzz-${name} SOURCES Fuzz${name}.cpp LINK ${ARG_LINK})
    target_link_options(fuzz-${name} PRIVATE -fsanitize=fuzzer)
endfunction()
