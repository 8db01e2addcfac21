# Flags that every target of ours carries; kept on targets so that a parent project keeps its own.
# A second argument names the set of precompiled headers, where it is not the common one.
function(ry_target_defaults target)
    ry_target_flags(${target})
    if(RY_PRECOMPILE_HEADERS)
        set(headers RyHeaders)
        if(ARGC GREATER 1)
            set(headers ${ARGV1})
        endif()
        target_precompile_headers(${target} REUSE_FROM ${headers})
    endif()
endfunction()

function(ry_target_flags target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
    target_compile_options(${target} PRIVATE
        # A fused multiply and add rounds once where two operations round twice, and thousands of
        # packed colours would depend on the compiler and the processor.
        -ffp-contract=off
        # Nobody reads errno after a square root, and setting it keeps loops from being vectorised.
        -fno-math-errno
        -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual
        # Files that are compiled together see each other's constants.
        $<$<NOT:$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wshadow>
        $<$<BOOL:${RY_WARNINGS_AS_ERRORS}>:-Werror>)
    if(RY_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${RY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${RY_SANITIZE})
    endif()
endfunction()

# More than half of a build is the parsing of the same headers of Qt. GCC takes precompiled headers
# only where all flags agree and loads a set whole, so a set holds what many files of its targets
# include and no more. Builds without them show that every file includes what it uses.
function(ry_add_precompiled_headers name)
    cmake_parse_arguments(arg "" "" "HEADERS;LIBRARIES" ${ARGN})
    set(source ${CMAKE_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    add_library(${name} OBJECT ${source})
    ry_target_flags(${name})
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()
