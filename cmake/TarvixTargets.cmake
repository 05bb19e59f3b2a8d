# How a folder becomes a target. One target for each folder lets the linker keep the direction of the includes.

add_library(strict INTERFACE)  # linked by every target of ours
target_compile_options(strict INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor)
# What is given to people is hardened. The compiler's own defaults make it independent of its position.
set(hardened "$<AND:$<CONFIG:Release,RelWithDebInfo>,$<NOT:$<BOOL:${TARVIX_SANITIZE}>>>")
target_compile_options(strict INTERFACE $<${hardened}:-fstack-protector-strong> $<${hardened}:-U_FORTIFY_SOURCE>
  $<${hardened}:-D_FORTIFY_SOURCE=2>)
target_link_options(strict INTERFACE $<${hardened}:LINKER:-z,relro,-z,now>)
if(TARVIX_SANITIZE)
  target_compile_options(strict INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(strict INTERFACE -fsanitize=address,undefined)
endif()

# tarvix_folder(NAME LIBRARIES...): the static library tarvix_NAME of all sources in the current folder; a folder of
# headers alone becomes an interface library.
function(tarvix_folder name)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  if(sources)
    add_library(tarvix_${name} STATIC ${sources})
    target_include_directories(tarvix_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(tarvix_${name} PRIVATE strict PUBLIC ${ARGN})
  else()
    add_library(tarvix_${name} INTERFACE)
    target_include_directories(tarvix_${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(tarvix_${name} INTERFACE ${ARGN})
  endif()
endfunction()

# tarvix_tests(NAME LIBRARIES...): the test program test_NAME of all sources in the current folder, one ctest entry for
# each test in it.
function(tarvix_tests name)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(test_${name} PRIVATE strict ${ARGN} GTest::gmock_main)
  # The name that a test gives its parameter, not its bytes.
  gtest_discover_tests(test_${name} TEST_PREFIX "${name}: " NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 60)
endfunction()
