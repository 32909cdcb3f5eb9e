# Warnings and sanitizers for our own code only: foreign headers come in as system headers.
add_library(house_options INTERFACE)
target_compile_options(house_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused -Wdouble-promotion -Wformat=2
    -Wimplicit-fallthrough -Wnull-dereference -Wextra-semi)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(house_options INTERFACE
        -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wuseless-cast
        # GCC 12 sees null where inlined containers cannot have it, under sanitizers and -O2 alike
        -Wno-null-dereference
        # and overlapping or overflowing copies where std::vector and std::string grow
        -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds -Wno-restrict)
endif()
get_target_property(warnings house_options INTERFACE_COMPILE_OPTIONS)
if(CV_SETS_SANITIZE)
    if(CV_SETS_SANITIZE STREQUAL "thread")
        set(sanitizers -fsanitize=thread -fno-omit-frame-pointer)
        set(test_sanitizers ${sanitizers})
    else()
        set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
        set(test_sanitizers -fsanitize=address -fno-omit-frame-pointer)
    endif()
    if(CV_SETS_FUZZ)
        list(APPEND sanitizers -fsanitize=fuzzer-no-link)
    endif()
    target_compile_options(house_options INTERFACE ${sanitizers} $<$<NOT:$<BOOL:${CV_SETS_FUZZ}>>:-O1>)
    target_link_options(house_options INTERFACE ${sanitizers})
endif()

# The tests themselves are watched for addresses only and not optimised: what they are made of (the
# matchers of gmock) would cost more time to compile so than all of the program. Several of them are
# one source for the compiler, so that their fixtures stand in included files and names of one file
# may hide those of another.
add_library(house_test_options INTERFACE)
# What a preparing step was refused shows in what is expected after it, so its result may be ignored.
target_compile_options(house_test_options INTERFACE ${warnings} -Wno-unused-result -Wno-shadow -Wno-subobject-linkage)
if(CV_SETS_SANITIZE)
    target_compile_options(house_test_options INTERFACE ${test_sanitizers})
    target_link_options(house_test_options INTERFACE ${sanitizers})
endif()
