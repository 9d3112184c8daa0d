# The README's two commands are `make run` and `make test`; both install what is missing first.
PRESET ?= default
JOBS ?= $(shell nproc 2>/dev/null || sysctl -n hw.ncpu 2>/dev/null || echo 2)
SOURCES = $(shell git ls-files '*.cpp' '*.h' '*.mm' 2>/dev/null)

.PHONY: all bootstrap configure build test test-default test-libcxx test-sanitizers test-install package run bench format mac-check clean

all: build

bootstrap:
	@scripts/bootstrap

configure: bootstrap
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET) -j $(JOBS)

test: test-default test-libcxx test-sanitizers test-install

test-default:
	@$(MAKE) --no-print-directory build PRESET=default
	@ctest --preset default -j $(JOBS)

# Apple's libc++ lags this machine's: the portable libraries and their suites are built and run
# with clang 16 and libc++ 16 (the C++ library of the macOS 14.2 SDK), and every other file of
# the default build is type-checked with them, so a change that would break a Mac build fails here.
test-libcxx:
	@$(MAKE) --no-print-directory build PRESET=default
	@cmake --preset libcxx >/dev/null
	@cmake --build --preset libcxx -j $(JOBS) --target corvanel_tests_platform corvanel_tests_switching corvanel_tests_spectrum
	@ctest --preset libcxx -j $(JOBS) -L 'platform|switching|spectrum'
	@scripts/syntax-pass --commands build/default/compile_commands.json \
		--except-commands build/libcxx/compile_commands.json \
		--skip src/platform/linux --skip tests/linux --compiler clang++-16 -- -stdlib=libc++

# The portable cores, the meters, the app and the tools under AddressSanitizer+UBSan, and the
# cores under ThreadSanitizer. The ASan build is optimised (-O1): it runs the meters' pixel loops
# at a usable speed; GCC's maybe-uninitialized analysis misfires on instrumented library code at
# that level, so that one warning is off in that build only. The PulseAudio suite stays out of
# the TSan run: libpulse is not instrumented, so TSan cannot see its own synchronisation and
# reports races inside it; that suite runs in the default build.
test-sanitizers: bootstrap
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j $(JOBS) --target corvanel_tests_platform corvanel_tests_switching \
		corvanel_tests_spectrum corvanel_tests_meters corvanel_tests_app corvanel_tests_tools
	@ctest --preset asan -j $(JOBS) -L 'platform|switching|spectrum|meters|app|tools'
	@cmake --preset tsan >/dev/null
	@cmake --build --preset tsan -j $(JOBS)
	@ctest --preset tsan -j $(JOBS) -LE linux

# A packager's Release build, installed into a temporary folder and packaged, then checked.
test-install: bootstrap
	@scripts/test-install build/release

# The package for this system from that build: a .deb on Linux, a .dmg with Corvanel.app on
# macOS, in build/release/packages/.
package: bootstrap
	@cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DCORVANEL_HOST_VECTOR=OFF \
		-DCORVANEL_BUILD_TESTS=OFF -DCORVANEL_BUILD_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS)
	@cd build/release && cpack

run: build
	@scripts/run build/$(PRESET)

bench:
	@$(MAKE) --no-print-directory build PRESET=default
	@for b in build/default/bench/bench_*; do [ -x "$$b" ] && echo "== $$b" && "$$b"; done

format:
	@clang-format -i $(SOURCES)

# Type-checks everything a Mac build compiles against a macOS SDK (DEVELOPERS.md says how to put
# one together): make mac-check SDK=/path/to/MacOSX14.2.sdk
mac-check:
	@$(MAKE) --no-print-directory build PRESET=default
	@scripts/mac-check "$(SDK)" build/default

clean:
	@rm -rf build
