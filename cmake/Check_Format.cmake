# Fails where clang-format would change a line. Run: cmake -DROOT=.. -P Check_Format.cmake
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE sources ${ROOT}/bench/*.cpp ${ROOT}/data/*.cpp ${ROOT}/src/*.cpp ${ROOT}/src/*.h
    ${ROOT}/tests/*.cpp ${ROOT}/tests/*.h ${ROOT}/tools/*.cpp ${ROOT}/tools/*.h)
list(LENGTH sources number)
if(number EQUAL 0)
    message(FATAL_ERROR "no sources found")
endif()
execute_process(COMMAND clang-format --dry-run -Werror ${sources} RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "clang-format -i would change these lines")
endif()
