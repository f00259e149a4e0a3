# The two commands of the README: `make run` and `make test`. Both install what they need first.
PRESET ?= default
BUILD := build
# Where `make install` puts Velmora; ~/.local needs no root.
PREFIX ?= $(HOME)/.local

.PHONY: setup build run test bench format format-check clean install

setup:
	@tools/setup

build: setup
	@[ -f $(BUILD)/build.ninja ] || cmake --preset $(PRESET)
	@cmake --build $(BUILD) --target velmora

run: build
	@tools/run-agent $(BUILD)/velmora

install: build
	@cmake --install $(BUILD) --prefix "$(patsubst ~%,$(HOME)%,$(PREFIX))" --strip

test: setup
	@[ -f $(BUILD)/build.ninja ] || cmake --preset $(if $(CI),ci,$(PRESET))
	@cmake --build $(BUILD)
	@tools/check-format
	@cd $(BUILD) && ctest --output-on-failure --timeout 300

bench: setup
	@[ -f build-bench/build.ninja ] || cmake --preset bench
	@nice cmake --build build-bench --target velmora testwin desktop_benches $(notdir $(basename $(wildcard bench/bench_*.cpp)))
	@for b in build-bench/bench/bench_*; do case "$$b" in *bench_monitor_snapshot) continue ;; esac; if [ -f "$$b" ] && [ -x "$$b" ]; then "$$b"; fi; done
	@tools/bench-monitor build-bench
	@tools/bench-desktop build-bench
	@tools/bench-clipboard-history build-bench

format:
	@git ls-files -co --exclude-standard '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) build-bench
