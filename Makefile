# The README's two commands are `make run` and `make test`; both install what is missing first.
PRESET ?= default
JOBS ?= $(shell nproc 2>/dev/null || sysctl -n hw.ncpu 2>/dev/null || echo 2)
SOURCES = $(shell git ls-files '*.cpp' '*.h' '*.mm' 2>/dev/null)

.PHONY: all bootstrap configure build test test-default test-sanitizers run bench format mac-check clean

all: build

bootstrap:
	@scripts/bootstrap

configure: bootstrap
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET) -j $(JOBS)

test: test-default test-sanitizers

test-default:
	@$(MAKE) --no-print-directory build PRESET=default
	@ctest --preset default -j $(JOBS)

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
