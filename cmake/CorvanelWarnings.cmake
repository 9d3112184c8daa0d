# One place for the warning set, so every target of ours is held to the same bar.
add_library(corvanel_warnings INTERFACE)
if(MSVC)
    target_compile_options(corvanel_warnings INTERFACE /W4 $<$<BOOL:${CORVANEL_WERROR}>:/WX>)
else()
    target_compile_options(corvanel_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
        -Wimplicit-fallthrough
        $<$<BOOL:${CORVANEL_WERROR}>:-Werror>)
endif()
