# On x86-64, build for the AVX2 generation of vector instructions (x86-64-v3) when the building
# machine runs them, as every machine that runs `make run` builds for itself. The meters' pixel
# loops run twice as wide, and VEX-encoded code is spared the stalls legacy SSE code suffers on
# processors that still track upper halves of the vector registers as in use (some virtual
# machines leave that state set between calls). Turn it off for a build meant for other machines.
option(CORVANEL_HOST_VECTOR "Use the building machine's AVX2 vector instructions on x86-64" ON)

if(CORVANEL_HOST_VECTOR AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$"
   AND NOT CMAKE_CROSSCOMPILING AND (NOT APPLE OR CMAKE_OSX_ARCHITECTURES STREQUAL ""
                                     OR CMAKE_OSX_ARCHITECTURES STREQUAL "x86_64"))
    include(CheckCXXSourceRuns)
    set(CMAKE_REQUIRED_FLAGS -march=x86-64-v3)
    check_cxx_source_runs([[
        int main() {
            __builtin_cpu_init();
            return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                           __builtin_cpu_supports("bmi2")
                       ? 0
                       : 1;
        }]] CORVANEL_HOST_RUNS_X86_64_V3)
    unset(CMAKE_REQUIRED_FLAGS)
    if(CORVANEL_HOST_RUNS_X86_64_V3)
        add_compile_options(-march=x86-64-v3)
    endif()
endif()
