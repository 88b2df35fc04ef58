# Every target of the project calls pelicor_target_defaults() so that warnings, sanitizers and
# the include layout are set in one place.
add_library(pelicor_build_flags INTERFACE)
target_compile_features(pelicor_build_flags INTERFACE cxx_std_17)
if(MSVC)
  target_compile_options(pelicor_build_flags INTERFACE /W4 $<$<BOOL:${PELICOR_WERROR}>:/WX>)
else()
  target_compile_options(pelicor_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
    -Woverloaded-virtual -Wconversion -Wdouble-promotion
    -Wformat=2 -Wimplicit-fallthrough
    $<$<BOOL:${PELICOR_WERROR}>:-Werror>)
endif()
if(PELICOR_SANITIZE AND NOT MSVC)
  target_compile_options(pelicor_build_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(pelicor_build_flags INTERFACE -fsanitize=address,undefined)
endif()

function(pelicor_target_defaults target)
  target_link_libraries(${target} PRIVATE pelicor_build_flags)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
endfunction()

# In the fuzz build every library is instrumented for coverage, so libFuzzer is guided by the
# parsers it exercises and not only by the ten lines of each entry point.
if(PELICOR_BUILD_FUZZ)
  target_compile_options(pelicor_build_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
