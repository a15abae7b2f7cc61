"""One trial a seed: a random tree, a random request, and what is to hold whatever happens."""

import os
import random
import shutil
import tempfile

import trees
from check_manifest import Manifest, read_file, sum_of
from changes import mixed_version

FORMATS = [('text', b'txt'), ('html', b'html'), ('json', b'json'), ('markdown', b'md'),
           ('odt', b'odt'), ('trace', b'trace'), ('pandoc', b'ast.json'), ('fodt', b'fodt')]
OPTIONS = {'text': [[], ['--wrap', '40'], ['--raw-lines'], ['--charset', '850']],
           'html': [[], ['--no-page-breaks'], ['--charset', '850']],
           'json': [[], ['--lines']],
           'markdown': [[], ['--no-headers', '--commands']]}


class Failure(Exception):
    pass


class Trial:
    """What the trials of all kinds share. A trial's folder is gone when it is over."""

    def __init__(self, seed, program, converter, samples, size):
        self.random = random.Random(seed)
        self.program = program
        self.converter = converter
        self.folder = os.fsencode(tempfile.mkdtemp(prefix='property-'))
        self.tree = trees.Tree(self.random, os.path.join(self.folder, b'in'), samples)
        self.tree.fill(size)
        self.format, self.extension = self.random.choice(FORMATS)
        self.options = self.random.choice(OPTIONS.get(self.format, [[]]))
        self.inputs = [b'in']
        self.list_option = []
        self.standard_input = None
        self.out = b'out'
        self.foreign = {}       # what lies in OUT and is not ours, as trees.snapshot has it
        self.rewritten = set()  # paths that were changed in place during the run
        self.is_disturbed = False  # by faults, kills and changes: files may fail for no fault of theirs

    def close(self):
        shutil.rmtree(self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    # ---- runs ----

    def arguments(self, out=None, jobs=None, more=()):
        jobs = jobs or self.random.choice([1, 2, 4])
        return ['-q', '-t', self.format, *self.options, '-j', str(jobs), *more,
                '-o', out or self.out, *self.list_option, '--', *self.inputs]

    def run(self, out=None, jobs=None, more=(), failing=None):
        return self.program.run(self.folder, self.arguments(out, jobs, more), failing,
                                self.standard_input)

    def start(self, failing=None):
        return self.program.start(self.folder, self.arguments(), failing, self.standard_input)

    # ---- what is to hold ----

    def demand(self, condition, words):
        if not condition:
            raise Failure(words)

    def note_sources(self):
        """What is to have a line, as the tree is now."""
        self.always, self.archives = [], []
        for given in self.given():
            sources, archives = trees.sources_of(given, self.out, self.tree.members)
            self.always += sources
            self.archives += archives

    def given(self):
        """Paths as the batch was given them; from the folder that it is started in."""
        os.chdir(self.folder)
        return self.inputs + getattr(self, 'listed', [])

    def version(self, source, wanted):
        for versions in self.tree.contents.values():
            for data in versions:
                if sum_of(data) == wanted:
                    return data
        real = os.path.realpath(self.path(source.split(b'!/')[0]))
        if real in self.rewritten:
            return mixed_version(self.tree.contents[real], wanted)
        if os.path.isfile(self.path(source)) and sum_of(read_file(self.path(source))) == wanted:
            return read_file(self.path(source))
        return None

    def is_justified(self, line, expected):
        """Whether a file may fail as its line says although convert would do it."""
        status = line['status']
        if expected is None and status in ('skipped', 'unreadable'):
            return True
        target = self.path(os.path.join(self.out, line['name'].encode() + b'.' + self.extension))
        if status == 'kept':
            return os.path.lexists(target)
        if status == 'name':
            return not is_free(target, self.path(self.out)) or 'manifest.ndjson' in line['name']
        return self.is_disturbed and status in ('unreadable', 'crashed', 'internal', 'memory',
                                                'timeout', 'skipped')

    def judge(self, run, out=None, left_over=(), checks_sources=True):
        os.chdir(self.folder)
        manifest = Manifest(self.path(out or self.out))
        manifest.check_outputs()
        manifest.check_folder(self.foreign_names(), left_over)
        manifest.check_conversions(self.converter, self.version, self.options, self.is_justified)
        if checks_sources:
            manifest.check_sources(self.always, self.archives, self.is_disturbed)
        if run:
            manifest.check_exit_code(run.code)
        self.demand(not manifest.problems, '\n'.join(manifest.problems)
                    + ('\n' + run.words if run else ''))
        return manifest

    def foreign_names(self):
        out = self.path(self.out)
        return [os.path.relpath(path, out) for path in self.foreign]

    def check_unchanged(self, before, after, what):
        for path in sorted(set(before) | set(after)):
            self.demand(before.get(path) == after.get(path),
                        '%s: %s: %s became %s' % (what, ascii(path), ascii(before.get(path))[:200],
                                                  ascii(after.get(path))[:200]))

    def outputs(self, out):
        """Everything in an output folder but what is foreign, by its name there."""
        folder = self.path(out)
        return {os.path.relpath(path, folder): state
                for path, state in trees.snapshot(folder).items() if state[0] != 'other'}

    def check_same(self, out, other):
        ours, others = self.outputs(out), self.outputs(other)
        for name in sorted(set(ours) | set(others)):
            if ours.get(name) != others.get(name):
                raise Failure('%s is not the same in %s and %s: %s'
                              % (ascii(name), out, other,
                                 first_difference(ours.get(name), others.get(name))))


def is_free(target, out):
    """Whether nothing but folders and a regular file is in the way of a path below OUT."""
    parts = os.path.relpath(target, out).split(b'/')
    path = out
    for index, part in enumerate(parts):
        path = os.path.join(path, part)
        is_last = index + 1 == len(parts)
        if len(part) > 255 or len(path) > 4000:
            return False
        if os.path.lexists(path) and (os.path.islink(path) or os.path.isfile(path) != is_last):
            return False
    return True


def first_difference(one, other):
    if one is None or other is None or one[:-1] != other[:-1]:
        return '%s and %s' % (ascii(one)[:300], ascii(other)[:300])
    lines = zip(one[-1].split(b'\n'), other[-1].split(b'\n'))
    return '\n'.join('%s\n%s' % (ascii(a)[:900], ascii(b)[:900]) for a, b in lines if a != b)[:2000]
