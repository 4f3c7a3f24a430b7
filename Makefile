# The commands of the project. Each one sets up the machine and builds what it needs.
PRESET ?= dev
PYTHON ?= /usr/bin/python3
BUILD := build/$(PRESET)
TOOL := /usr/bin/python3
# Left to ninja unless told: make JOBS=2 ...
JOBS ?=
NINJA := ninja $(if $(JOBS),-j$(JOBS)) -C

.DELETE_ON_ERROR:
.PHONY: help setup build demo test check format conformance api asan matrix bench clean FORCE

help:
	@echo 'make demo [FILE=x.psd]   a layered document made, saved, read, changed; or a walk over yours'
	@echo 'make test                all tests, with all set-up'
	@echo 'make check               formatters, linters, layers, in seconds (make format mends)'
	@echo 'make conformance         docs/conformance.md from the last tests'
	@echo 'make api                 api/ and docs/status.md from the compiled library'
	@echo 'make asan, make matrix   tests with sanitizers; on all interpreters'
	@echo 'make bench               figures of docs/benchmarks.md'
	@echo 'Variables: PYTHON=/path/to/python3.x, PRESET=dev|release|asan, JOBS=n'

setup:
	@tools/setup.sh

# Touched only when another interpreter is chosen, so that nothing is configured twice.
$(BUILD)/interpreter: FORCE | setup
	@mkdir -p $(@D)
	@echo '$(PYTHON)' | cmp -s - $@ || echo '$(PYTHON)' > $@

$(BUILD)/build.ninja: $(BUILD)/interpreter CMakePresets.json
	cmake --preset $(PRESET) -DKELMOR_PYTHON=$(PYTHON)
	@touch $@

build: $(BUILD)/build.ninja
	@$(NINJA) $(BUILD)

demo: build
	$(BUILD)/bin/python examples/demo.py $(if $(FILE),"$(FILE)") --output build/demo

test: $(if $(CI),check) build
	@$(TOOL) tools/run_tests.py --build $(BUILD) --python $(PYTHON) $(TESTS)

check: setup
	@tools/check.sh

format: setup
	@tools/check.sh --write

conformance:
	@$(TOOL) tools/conformance.py page --build $(BUILD)

api: setup
	@tools/make_api.sh $(BUILD)

asan:
	@$(MAKE) --no-print-directory test PRESET=asan TESTS='--only unit --only boundary --only properties'

matrix: build
	@$(TOOL) tools/matrix.py --base $(BUILD) $(MATRIX)

bench:
	@$(MAKE) --no-print-directory build PRESET=release
	build/release/bin/python bench/run.py
	build/release/bin/python bench/import
	build/release/bin/python bench/values.py

clean:
	rm -rf build
