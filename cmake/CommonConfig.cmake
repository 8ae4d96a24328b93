# One place for the flags every Kelvaris target shares: language level,
# warnings, Qt defines and the optional sanitizers.
set(CMAKE_AUTOMOC ON)
# The static libraries also go into the front ends' module.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(kelvaris_options INTERFACE)
target_compile_features(kelvaris_options INTERFACE cxx_std_20)
# Warnings are errors: the code holds this stricter set, and keeps holding it.
option(KELVARIS_WERROR "Treat compiler warnings as errors" ON)
target_compile_options(kelvaris_options INTERFACE
    -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Wcast-qual -Woverloaded-virtual -Wformat=2
    -Wimplicit-fallthrough -Wmissing-declarations)
if(KELVARIS_WERROR)
    target_compile_options(kelvaris_options INTERFACE -Werror)
endif()
target_compile_definitions(kelvaris_options INTERFACE
    QT_NO_CONTEXTLESS_CONNECT
    QT_NO_KEYWORDS
    QT_USE_QSTRINGBUILDER
    KELVARIS_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
    KELVARIS_VERSION_MINOR=${PROJECT_VERSION_MINOR}
    KELVARIS_VERSION_PATCH=${PROJECT_VERSION_PATCH})

if(KELVARIS_SANITIZE)
    target_compile_options(kelvaris_options INTERFACE
        -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    target_link_options(kelvaris_options INTERFACE -fsanitize=address,undefined)
endif()
