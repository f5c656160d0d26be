# The verbs of daily work. The presets underneath are in CMakePresets.json.

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local

rooms := $(wildcard work values platform foundation core scripting lists text files app \
                    bus osa desktop cli service)
sources := $(shell find $(rooms) $(wildcard tests fuzz bench) -name '*.cpp' -o -name '*.h')

# configure,PRESET: quiet unless it fails.
configure = [ -f build/$(1)/build.ninja ] || { mkdir -p build/$(1) && \
  cmake --preset $(1) > build/$(1)/configure.log 2>&1 || \
  { cat build/$(1)/configure.log; exit 1; }; }
build = $(call configure,$(1)) && cmake --build --preset $(1) -j $(JOBS)
test = ctest --preset $(1)

.PHONY: demo test accept build bench install docs docs-check format format-check lint asan tsan \
        check-includes clean

demo:
	@tools/setup.sh build
	@$(call build,release)
	@examples/edit_list.sh

test:
	@tools/setup.sh build test
	@$(call build,dev)
	@$(call test,dev)

# Shows what the tables of cases do not expect; accepts it with ACCEPT=1 or when told to.
accept:
	@tools/setup.sh build test
	@$(call build,dev) --target accept_answers
	@build/dev/tests/accept_answers $(if $(ACCEPT),--write)

build:
	@$(call build,release)

bench:
	@tools/setup.sh build bench
	@$(call build,release) --target bench_programs
	@python3 bench/run.py

install: build
	@cmake --install build/release --prefix "$(PREFIX)"

# docs/commands.md, from the scripting dictionary.
docs:
	@python3 tools/make_command_reference.py

docs-check:
	@python3 tools/make_command_reference.py --check

format:
	@clang-format-14 -i $(sources)

format-check:
	@clang-format-14 --dry-run --Werror $(sources)

lint:
	@$(call configure,dev)
	@python3 tools/lint.py build/dev $(JOBS) $(rooms)

asan tsan:
	@tools/setup.sh
	@$(call build,$@)
	@$(call test,$@)

check-includes:
	@python3 tools/check_includes.py

clean:
	@rm -rf build
