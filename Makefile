# A thin wrapper around CMakePresets.json and scripts/.
# demo:  installs missing packages, builds, shows one sample of each kind as text
# check: installs missing packages, builds, runs the tests of library and commands: minutes
# check-all: check, then sanitizers, checks by other programs, an installation and a package
# qa:    the tests in every build and on every machine of scripts/qa: takes hours
# package: installs missing packages, builds the Debian package in build/package, tests it
# bench: installs missing packages, builds, measures, prints the goals with the measured values
.PHONY: demo check check-all qa package bench lint coverage clean

demo:
	@scripts/install-dependencies
	@scripts/demo

check:
	@scripts/install-dependencies --tests
	@scripts/check

check-all: check
	@scripts/install-dependencies --tests --judges
	@scripts/check-all

qa:
	@scripts/qa all

package:
	@scripts/install-dependencies --tests --judges
	@scripts/package
	@tests/package/package.sh build/package/pfsdoc_*.deb .

bench:
	@scripts/install-dependencies --tests libbenchmark-dev valgrind catdoc antiword cmark libwpd-tools
	@scripts/bench

lint:
	@scripts/lint

coverage:
	@scripts/coverage

clean:
	rm -rf build
