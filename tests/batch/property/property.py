#!/usr/bin/python3
"""Random trials of `pfsdoc batch`, each from a seed; see tests/batch/property/README.md.

  property.py --pfsdoc PROGRAM --failing-calls LIBRARY --samples FOLDER [KIND=FIRST-LAST ...]

KIND is one of tree, kill, faults, changes, outputs; FIRST-LAST are seeds. Prints each failure with
the words that repeat it.
"""

import argparse
import glob
import os
import sys
import time
import traceback

import disturbed_trials
import output_trial
import tree_trial
from check_manifest import Converter, read_file
from runs import Program

KINDS = {'tree': tree_trial.run, 'kill': disturbed_trials.kill, 'faults': disturbed_trials.faults,
         'changes': disturbed_trials.changes, 'outputs': output_trial.run}


MOST_LINES = 10  # of one failure


def seeds_of(words):
    kind, _, seeds = words.partition('=')
    first, _, last = seeds.partition('-')
    if kind not in KINDS:
        raise argparse.ArgumentTypeError('no kind of trial: %s' % kind)
    return kind, range(int(first), int(last or first) + 1)


def main():
    parser = argparse.ArgumentParser(description='Random trials of a batch.')
    parser.add_argument('--pfsdoc', required=True)
    parser.add_argument('--failing-calls', required=True)
    parser.add_argument('--samples', required=True)
    parser.add_argument('trials', nargs='+', type=seeds_of)
    request = parser.parse_args()
    program = Program(request.pfsdoc, request.failing_calls)
    samples = [read_file(path) for path in sorted(glob.glob(request.samples + '/*/*.doc'))]
    if not samples:
        parser.error('no samples in %s' % request.samples)
    failures = 0
    for kind, seeds in request.trials:
        start = time.monotonic()
        failed = [seed for seed in seeds if not passes(kind, seed, program, samples)]
        failures += len(failed)
        print('%s: %d trials, %d failed%s, %.1f s'
              % (kind, len(seeds), len(failed), ' %s' % failed if failed else '',
                 time.monotonic() - start), flush=True)
    return 1 if failures else 0


def shortened(words):
    lines = words.split('\n')
    return '\n'.join(lines[:MOST_LINES] + ['and %d lines more' % (len(lines) - MOST_LINES)]
                     if len(lines) > MOST_LINES else lines)


def passes(kind, seed, program, samples):
    here = os.getcwd()
    try:
        KINDS[kind](seed, program, Converter(program.pfsdoc), samples)
        return True
    except Exception as failure:
        print('FAILED, repeat with %s=%d\n%s' % (kind, seed, shortened(str(failure))), flush=True)
        if 'PROPERTY_TRACEBACK' in os.environ:
            traceback.print_exc()
        return False
    finally:
        os.chdir(here)


if __name__ == '__main__':
    sys.exit(main())
