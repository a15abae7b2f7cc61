# A thin face over CMakePresets.json and scripts/.
# demo:  installs what is missing, builds, shows one sample of each kind as text
# check: installs what is missing, builds, passes all tests, again under sanitizers
.PHONY: demo check lint coverage clean

demo:
	@scripts/install-dependencies
	@scripts/demo

check:
	@scripts/install-dependencies
	@scripts/check

lint:
	@scripts/lint

coverage:
	@scripts/coverage

clean:
	rm -rf build
