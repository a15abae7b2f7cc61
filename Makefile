# A thin face over CMakePresets.json and scripts/.
# demo:  installs what is missing, builds, shows one sample of each kind as text
# check: installs what is missing, builds, passes the tests of library and commands: minutes
# check-all: check, then sanitizers, other programs' judgement, an installation and a package
# qa:    the tests in every build and on every machine of scripts/qa: takes hours
# package: installs what is missing, builds the Debian package in build/package, tests it
# bench: installs what is missing, builds, measures, prints what was reached of each goal
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
