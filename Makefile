# The README's two commands are `make run` and `make test`; both install what is missing first.
PRESET ?= default
JOBS ?= $(shell nproc 2>/dev/null || sysctl -n hw.ncpu 2>/dev/null || echo 2)
SOURCES = $(shell git ls-files '*.cpp' '*.h' '*.mm' 2>/dev/null)

.PHONY: all bootstrap configure build test test-default test-sanitizers test-install package run bench format mac-check clean

all: build

bootstrap:
	@scripts/bootstrap

configure: bootstrap
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET) -j $(JOBS)

test: test-default test-sanitizers test-install

test-default:
	@$(MAKE) --no-print-directory build PRESET=default
	@ctest --preset default -j $(JOBS)

# The portable cores under AddressSanitizer+UBSan and ThreadSanitizer. The PulseAudio suite stays
# out of the TSan run: libpulse is not instrumented, so TSan cannot see its own synchronisation
# and reports races inside it; that suite runs in the default build.
test-sanitizers: bootstrap
	@cmake --preset asan >/dev/null
	@cmake --build --preset asan -j $(JOBS) --target corvanel_tests_platform corvanel_tests_switching corvanel_tests_spectrum
	@ctest --preset asan -j $(JOBS) -L 'platform|switching|spectrum'
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

# Type-checks the Objective-C++ adapters against a macOS SDK: make mac-check SDK=/path/to/MacOSX.sdk
mac-check:
	@scripts/mac-check "$(SDK)"

clean:
	@rm -rf build
