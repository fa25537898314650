# Settings every Quillet target shares: language level, warnings, Qt safety
# defines, and the floating-point rules the engine's exact results rely on.
add_library(quillet_common INTERFACE)
target_compile_features(quillet_common INTERFACE cxx_std_20)
target_compile_options(quillet_common INTERFACE
    -Wall -Wextra -Wpedantic
    # Fused multiply-add would change the rounding of the solvers' formulas.
    -ffp-contract=off
)
target_compile_definitions(quillet_common INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_URL_CAST_FROM_STRING
    QT_USE_QSTRINGBUILDER
)
if(QUILLET_SANITIZE)
    target_compile_options(quillet_common INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer)
    target_link_options(quillet_common INTERFACE -fsanitize=address,undefined)
endif()
