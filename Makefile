# Two commands to begin with: "make demo" and "make test".
.DEFAULT_GOAL := help
BUILD := build/release
DEV := build/dev
export CCACHE_DIR ?= $(HOME)/.cache/ccache

.PHONY: help setup build demo gallery test run package screens bench bench-app bench-editor bench-player bench-export bench-capture bench-wayland bench-sync asan tsan fuzz format lint clean

help: ## this list
	@awk -F':.*## ' '/^[a-z-]+:.*## /{printf "  make %-13s %s\n", $$1, $$2}' $(MAKEFILE_LIST)

setup: ## install what is missing, from Debian's packages
	@tools/setup

build: setup ## build everything (release) into build/release/bin
	@tools/build release

demo: build ## record a real screen, zoom, export, and look at the result
	@tools/demo

gallery: build ## stills of every background, pointer, chip size and camera corner
	@tools/gallery

test: setup ## build and run every test
	@tools/build dev
	@tools/test dev

run: build ## open the application
	@$(BUILD)/bin/tavlin

screens: setup ## draw every screen of the window into docs/screens
	@tools/build dev tavi-screens
	@tools/screens

package: build ## make a Debian package, build/release/*.deb
	@cd build/release && cpack -G DEB

bench: build ## run the benchmarks
	@tools/bench

bench-export: build ## time exports against the encoder alone and a filter graph made by hand
	@tools/bench-export

bench-sync: setup ## record for minutes and tell how far sound and picture are apart
	@tools/bench-sync

bench-capture: build ## what recording a busy display costs, beside ffmpeg's grabber
	@tools/bench-capture

bench-wayland: build ## what recording a busy cast of a compositor costs, beside GStreamer
	@tools/bench-wayland

bench-app: build ## time the application's start, and what its idle library costs
	@tools/bench-app

bench-editor: build ## what playing a take in the editor costs, thread by thread
	@tools/bench-editor

bench-player: build ## time opening, seeking and playing of a take
	@tools/bench-player

asan: setup ## every test under the address and undefined-behaviour sanitizers
	@tools/build asan
	@tools/test asan

tsan: setup ## every test under the thread sanitizer
	@tools/build tsan
	@tools/test tsan

fuzz: setup ## a minute of libFuzzer on each parser
	@tools/fuzz

format: ## put every source file into the house format
	@git ls-files '*.h' '*.cpp' | xargs clang-format -i

lint: setup ## clang-tidy over the sources of build/dev
	@tools/lint

clean: ## remove everything that was built
	@rm -rf build
