# Front door for the common tasks; CMake does the real work.
BUILD      ?= build
ASAN_BUILD ?= build-sanitize
TSAN_BUILD ?= build-tsan
PREFIX     ?= /usr/local
JOBS       ?= $(shell nproc)
FUZZ_SECONDS ?= 60

.PHONY: all bootstrap configure build test demo sanitize tsan install bench fuzz clean

all: build

bootstrap:
	@./scripts/bootstrap.sh

configure: bootstrap
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The orders example (binding, then streaming) and a koxml round trip; the
# older tour of the library stays available as $(BUILD)/demo.
demo: build
	@./scripts/demo.sh $(BUILD)

sanitize: bootstrap
	@cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DKOXML_SANITIZE=ON -DKOXML_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS)

# The threaded tests (and every other) under ThreadSanitizer, in their own tree.
tsan: bootstrap
	@cmake -S . -B $(TSAN_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKOXML_TSAN=ON -DKOXML_BUILD_BENCH=OFF >/dev/null
	@cmake --build $(TSAN_BUILD) -j $(JOBS)
	@cd $(TSAN_BUILD) && TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
	  ctest --output-on-failure -j $(JOBS)

install: build
	@cmake --install $(BUILD) --prefix $(PREFIX)

bench: configure
	@cmake --build $(BUILD) -j $(JOBS)
	@for b in $(BUILD)/bench_*; do [ -x "$$b" ] && "$$b" --benchmark_min_time=0.2; done

fuzz:
	@./scripts/fuzz.sh $(FUZZ_SECONDS)

clean:
	@rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) build-fuzz
