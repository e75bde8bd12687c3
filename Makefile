# make run and make test are all that a newcomer needs; make help lists the rest.
.DEFAULT_GOAL := help
JOBS ?= $(shell nproc)
TOOL := build/release/bin/mapanchor

# A clone in another folder finds what this one compiled, precompiled headers included.
export CCACHE_BASEDIR := $(CURDIR)
export CCACHE_NOHASHDIR := 1
export CCACHE_SLOPPINESS := pch_defines,time_macros,include_file_mtime,include_file_ctime

.PHONY: help setup build run test asan tsan coverage fuzz bench bench-compare crs-sweep format format-check tidy conformance consumer package wheel docs abi abi-update hard-places fault-sweep clean

help: ## list the targets
	@grep -hE '^[a-z-]+:.*## ' $(MAKEFILE_LIST) | sed -E 's/:.*## /\t/' | expand -t 16

setup: ## install the Debian packages that are missing
	@scripts/setup.sh

build: setup ## build everything, optimised, into build/release
	@cmake --preset release >build-configure.log 2>&1 || { cat build-configure.log; rm -f build-configure.log; exit 1; }
	@rm -f build-configure.log
	@cmake --build --preset release -j $(JOBS)

run: ## build the command line, and show its main jobs on the input in examples/
	@scripts/setup.sh tool
	@test -e build/release/build.ninja || cmake --preset release -DMAPANCHOR_BUILD_TESTS=OFF -DMAPANCHOR_PYTHON=OFF
	@cmake --build --preset release -j $(JOBS) --target mapanchor
	@examples/run.sh $(TOOL)

test: build ## run all tests
	@scripts/test.sh release $(JOBS)

asan: setup ## build and test with AddressSanitizer and UndefinedBehaviorSanitizer
	@scripts/preset-test.sh asan $(JOBS)

tsan: setup ## build and test with ThreadSanitizer
	@scripts/preset-test.sh tsan $(JOBS)

coverage: setup ## test with coverage and print the share of lines of each folder
	@scripts/coverage.sh $(JOBS)

fuzz: setup ## build the fuzz targets and run each for FUZZ_SECONDS (60)
	@scripts/fuzz.sh $(JOBS)

bench: setup ## run the benchmarks, into docs/performance.md
	@scripts/bench.sh $(JOBS)

bench-compare: setup ## show which operation got slower than docs/performance.md says
	@scripts/bench.sh $(JOBS) --compare

crs-sweep: build ## pass every EPSG system through every notation, into docs/conformance.md
	@build/release/bin/crs_sweep --into docs/conformance.md --list build/release/crs-sweep.tsv

CORPUS ?= ../shared/corpus
conformance: build ## compare the tool with GDAL on the files of CORPUS, into docs/conformance.md
	@/usr/bin/python3 scripts/conformance.py $(TOOL) $(CORPUS) docs/conformance.md

consumer: build ## build a project outside the tree against the installed package
	@tests/consumer/check.sh build/release

abi: build ## compare the public ABI with the one that is kept in abi/
	@scripts/abi.sh build/release $(JOBS)

abi-update: build ## keep the public ABI as it is now
	@scripts/abi.sh build/release $(JOBS) --renew

docs: setup ## build the documentation site with the API reference, into build/release/site/html
	@cmake --preset release >/dev/null
	@scripts/docs.sh build/release build/release/docs
	@/usr/bin/python3 scripts/site.py build/release/docs/html build/release/site

package: setup ## build the Debian packages and look them over with lintian
	@scripts/package.sh $(JOBS)

wheel: ## build the wheel of the Python package and test it; needs Debian 13
	@scripts/wheel.sh

format: setup ## lay out the sources
	@scripts/format.sh

format-check: setup ## fail when a source is not laid out
	@scripts/format.sh --check

tidy: build ## run clang-tidy and cppcheck over the sources
	@scripts/tidy.sh build/release $(JOBS)

hard-places: build ## test under other locales, in a folder with an odd name, and without a place to write
	@scripts/hard-places.sh build/release $(JOBS)

FAULTS ?= full
fault-sweep: build ## let each call of every save fail, or kill there, and print what is left
	@build/release/bin/fault_sweep $(FAULTS)

clean: ## remove all builds
	rm -rf build
