# vinora: the two everyday commands are `make run` and `make test`.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?= -DCMAKE_BUILD_TYPE=RelWithDebInfo
# The catalogue `make run` opens; any folder will do (VINORA_HOME=/path make run).
VINORA_HOME ?= $(HOME)/.local/share/vinora

.PHONY: all deps configure build run test sanitize fuzz bench install package clean

all: build

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) $(CMAKE_FLAGS) > /dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	@if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then \
		VINORA_HOME="$(VINORA_HOME)" $(BUILD_DIR)/src/app/vinora; \
	else \
		echo "No display found: starting vinora under Xvfb (a virtual screen you cannot see)."; \
		VINORA_HOME="$(VINORA_HOME)" xvfb-run -a -s "-screen 0 1280x1024x24" $(BUILD_DIR)/src/app/vinora; \
	fi

# The suite, with a bounded run of every fuzz target under ASan and UBSan.
test: build
	@cmake --build $(BUILD_DIR) -j $(JOBS) --target fuzzers
	@cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

# The whole suite built and run under AddressSanitizer and UBSan.
sanitize: deps
	@cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=Debug -DVINORA_SANITIZE=ON > /dev/null
	@cmake --build build-sanitize -j $(JOBS)
	@cmake --build build-sanitize -j $(JOBS) --target fuzzers
	@cd build-sanitize && QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0 \
		UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

# Long fuzzing with clang's libFuzzer (FUZZ_SECONDS per target, FUZZ_TARGETS to choose).
fuzz: deps
	@bash scripts/fuzz.sh

bench: build
	@cmake --build $(BUILD_DIR) -j $(JOBS) --target benchmarks
	@bash bench/run.sh $(BUILD_DIR)

install: build
	@cmake --install $(BUILD_DIR)

# The Debian package, in the build folder (vinora_VERSION_ARCH.deb).
package: build
	@cd $(BUILD_DIR) && cpack -G DEB

clean:
	@rm -rf $(BUILD_DIR)
