# Every habit of this repository as one command; `make help` lists them.
# The builds live under build/, one folder for each preset of CMakePresets.json.
SHELL := /bin/bash
.SHELLFLAGS := -eu -o pipefail -c
.DEFAULT_GOAL := all
# lets ccache keep what is compiled with precompiled headers
export CCACHE_SLOPPINESS := pch_defines,time_macros
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 60
MUTANTS ?= 500
SEED ?= 1
EXAMPLE := examples/texts/workshop.mep
LAUNCHER := $(shell command -v ccache >/dev/null && echo -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
CONFIGURE = cmake --preset $(1) $(LAUNCHER) >build/$(1).log 2>&1 || { cat build/$(1).log; exit 1; }
BUILD = mkdir -p build; $(call CONFIGURE,$(1)); cmake --build --preset $(1) -j $(JOBS)
MAIN_JOB = build/$(1)/mep show $(EXAMPLE) -v scale=1.5 -v 'state="busy"' -v load=0.97 -v fill=0.4

.PHONY: all test quick asan format format-check lint bench growth docs map install-check package clean help
.PHONY: fuzz coverage mutation valgrind cppcheck
.PHONY: tools-build tools-lint tools-bench tools-fuzz tools-valgrind
.PHONY: build-release build-dev build-asan build-bench build-fuzz build-coverage

all: build-release ## install what is missing, build the release, show the shipped example (default)
	@$(call MAIN_JOB,release)

# The fuzz targets are tried for a moment where their engine is installed; build-asan replays their
# seeds in any case.
FUZZ_ENGINE := $(wildcard /usr/lib/llvm-14/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a)
TEST_BUILDS := dev asan $(if $(FUZZ_ENGINE),$(if $(shell command -v clang++-14),fuzz))
test: $(TEST_BUILDS:%=build-%) ## install what is missing, build, run every test, plain and under sanitizers
	@$(call MAIN_JOB,dev) >/dev/null && echo "main job: mep show $(EXAMPLE): ok"
	@printf 'subdirs($(TEST_BUILDS:%="%"))\n' >build/CTestTestfile.cmake
	@ctest --test-dir build --no-label-summary --output-on-failure -j $(JOBS)

quick: build-dev ## build and run the tests without sanitizers
	@ctest --preset dev -j $(JOBS)

asan: build-asan ## build and run the tests under AddressSanitizer, LeakSanitizer and UBSan
	@ctest --preset asan -j $(JOBS)

format: tools-lint ## rewrite the C++ sources in the house layout
	@git ls-files -co --exclude-standard '*.h' '*.cpp' | xargs clang-format -i

format-check: tools-lint ## fail when a C++ source is not in the house layout
	@git ls-files -co --exclude-standard '*.h' '*.cpp' | xargs clang-format --dry-run -Werror

lint: tools-lint ## run clang-tidy and cppcheck over all sources
	@mkdir -p build; $(call CONFIGURE,dev)
	@scripts/lint.sh build/dev $(JOBS)

bench: build-bench ## build the benchmarks in release, run them beside peers and print one table
	@bench/run_benchmarks.sh build/bench

growth: build-bench ## measure how times grow with sizes: a plot, a table, failure beyond the bounds
	@bench/run_growth.sh build/bench

fuzz: build-fuzz ## run each fuzz target for FUZZ_SECONDS=60 and print a table
	@python3 scripts/run_fuzzers.py build/fuzz $(FUZZ_SECONDS)

coverage: ## run the tests with counters and fail below 97 % of the lines or 90 % of the branches
	@$(MAKE) --no-print-directory build-coverage
	@find build/coverage -name '*.gcda' -delete
	@ctest --preset coverage -E '(house|install)\.' -j $(JOBS)
	@python3 scripts/coverage.py build/coverage

mutation: tools-build ## change the library in MUTANTS=500 small ways, by SEED=1, and name what no test notices
	@python3 scripts/mutate.py --mutants $(MUTANTS) --seed $(SEED) --jobs $(JOBS) --work build/mutation

valgrind: tools-valgrind build-dev ## run the test programs under memcheck
	@python3 scripts/run_valgrind.py build/dev

cppcheck: tools-lint ## run cppcheck alone, without a build
	@scripts/lint.sh cppcheck $(JOBS)

docs: build-dev ## run the examples of the documents and check the map of the sources
	@ctest --preset dev -R 'house|docs'

map: ## write the list of files in docs/architecture.md from their opening comments
	@python3 scripts/write_map.py .

install-check: build-dev ## install into fresh folders and try the result: headers, package, example host, man page
	@ctest --preset dev -L install -j $(JOBS)

package: build-release ## make the Debian package in build/release
	@umask 022; cd build/release && cpack -G DEB

clean: ## remove everything that was built
	@rm -rf build

help: ## list these targets
	@awk -F ':.*## ' '/^[a-z-]+:.*## /{printf "  make %-13s %s\n", $$1, $$2}' Makefile

tools-build:
	@scripts/install_missing.sh build
tools-lint:
	@scripts/install_missing.sh lint
tools-bench: tools-build
	@scripts/install_missing.sh bench
tools-fuzz: tools-build
	@scripts/install_missing.sh fuzz
tools-valgrind: tools-build
	@scripts/install_missing.sh valgrind

build-release: tools-build
	@$(call BUILD,release)
build-dev: tools-build
	@$(call BUILD,dev)
build-asan: build-dev
	@$(call BUILD,asan)
build-bench: tools-bench
	@$(call BUILD,bench)
build-fuzz: tools-fuzz
	@$(call BUILD,fuzz)
build-coverage: tools-build
	@$(call BUILD,coverage)
