# Flags that every target of ours carries; kept on targets so that a parent project keeps its own.
function(ry_target_defaults target)
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
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
        $<$<BOOL:${RY_WARNINGS_AS_ERRORS}>:-Werror>)
    if(RY_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${RY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${RY_SANITIZE})
    endif()
    if(RY_PRECOMPILE_HEADERS AND NOT target STREQUAL RyPrecompiledHeaders)
        target_precompile_headers(${target} REUSE_FROM RyPrecompiledHeaders)
    endif()
endfunction()
