# Two commands do all set-up on a fresh machine:
#   make run   builds Quillon and starts it (under Xvfb with a tray host when there is no display)
#   make test  builds with warnings as errors and runs every test
#   make bench measures the application index beside rofi and GLib (takes minutes)
#   make test-kde  checks the hot keys on KWin with Plasma's shortcut daemon (installs KWin as root)
#   make install   installs the release build under PREFIX (default /usr/local); make uninstall removes it
#   make package   builds the Debian package (build/release/package/quillon_*.deb)
#   make package-check  validates the desktop entry, AppStream data, completions and the package (lintian)
JOBS ?= $(shell nproc)
RELEASE_DIR := build/release
DEBUG_DIR := build/debug

PREFIX ?= /usr/local
# The libraries build in batches (a third of the time from scratch); set
# UNITY=OFF while changing one file over and over.
UNITY ?= ON
CONFIGURE := -DQUILLON_UNITY_BUILD=$(UNITY)

.PHONY: run test test-kde deps build-release build-debug bench clean install uninstall package package-check

deps:
	@bash scripts/install-deps

build-release: deps
	cmake -S . -B $(RELEASE_DIR) $(CONFIGURE) -DCMAKE_BUILD_TYPE=Release -DQUILLON_BUILD_TESTS=OFF -DQUILLON_BUILD_BENCHMARKS=OFF
	cmake --build $(RELEASE_DIR) -j $(JOBS)

build-debug: deps
	cmake -S . -B $(DEBUG_DIR) $(CONFIGURE) -DCMAKE_BUILD_TYPE=Debug -DQUILLON_WERROR=ON
	cmake --build $(DEBUG_DIR) -j $(JOBS)

run: build-release
	@bash scripts/run-quillon $(RELEASE_DIR)/bin/quillon

test: build-debug
	ctest --test-dir $(DEBUG_DIR) --output-on-failure -j $(JOBS)

test-kde: deps
	cmake -S . -B $(DEBUG_DIR) $(CONFIGURE) -DCMAKE_BUILD_TYPE=Debug -DQUILLON_WERROR=ON
	cmake --build $(DEBUG_DIR) -j $(JOBS) --target quillon
	bash tests/e2e/kde-hotkeys.sh $(DEBUG_DIR)/bin/quillon $(DEBUG_DIR)/tests/artifacts/kde-hotkeys

# Quillon's applications beside rofi and GLib, on generated desktop entries
# (takes minutes; rofi and Xvfb are used when installed, never installed here).
bench: deps
	cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=Release -DQUILLON_BUILD_TESTS=OFF
	cmake --build build/bench -j $(JOBS) --target quillon bench_applibrary bench_firstuse bench_startup
	python3 -B -m unittest discover -s bench -p 'test_*.py'
	python3 -B bench/run-bench.py build/bench

install: build-release
	cmake --install $(RELEASE_DIR) --prefix $(PREFIX)

# Every file the last install wrote, from its manifest.
uninstall:
	cmake -DMANIFEST=$(RELEASE_DIR)/install_manifest.txt -P cmake/QuillonUninstall.cmake

package: build-release
	cd $(RELEASE_DIR) && cpack -G DEB

package-check: package
	bash scripts/check-package $(RELEASE_DIR)

clean:
	rm -rf build

# Every test under AddressSanitizer and UndefinedBehaviorSanitizer (g++, as the
# normal build). The first fault stops the test that met it. Leaks are
# reported, none suppressed: a third-party one, if any shows, goes into a
# suppression file with the reason it is not Quillon's.
SANITIZE_DIR := build/sanitize
SANITIZE_EXCLUDE ?=
.PHONY: sanitize
sanitize: deps
	cmake -S . -B $(SANITIZE_DIR) $(CONFIGURE) -DCMAKE_BUILD_TYPE=Debug -DQUILLON_SANITIZE=ON -DQUILLON_BUILD_BENCHMARKS=OFF
	cmake --build $(SANITIZE_DIR) -j $(JOBS)
	ASAN_OPTIONS=halt_on_error=1:detect_leaks=1 \
	UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
	ctest --test-dir $(SANITIZE_DIR) --output-on-failure -j $(JOBS) $(if $(SANITIZE_EXCLUDE),-E '$(SANITIZE_EXCLUDE)')

# Each libFuzzer target of tests/fuzz for FUZZ_SECONDS (clang); crashing
# inputs are kept under build/fuzz/artifacts.
FUZZ_DIR := build/fuzz
FUZZ_SECONDS ?= 20
.PHONY: fuzz
fuzz: deps
	cmake -S . -B $(FUZZ_DIR) $(CONFIGURE) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++-14 -DQUILLON_FUZZ=ON \
	  -DQUILLON_BUILD_TESTS=OFF -DQUILLON_BUILD_BENCHMARKS=OFF
	cmake --build $(FUZZ_DIR) -j $(JOBS) --target quillon_fuzzers
	bash scripts/run-fuzzers $(FUZZ_DIR) $(FUZZ_SECONDS)
