#!/usr/bin/python3
"""Holds a manifest of `pfsdoc batch` against the disk. Shares no code with the batch.

Alone:  check_manifest.py --pfsdoc PROGRAM OUT     (in the folder that the batch was started in)

Every line is well-formed and canonical; every output is there with its size and sum, below OUT, and
no link; no two lines share a name or an output; nothing else is in OUT but what is known to be
foreign; every source has the bytes whose sum the line gives, or had them, and the output is what
`pfsdoc convert` makes of exactly these bytes; the exit code agrees with the statuses.
"""

import argparse
import hashlib
import json
import os
import re
import stat
import subprocess
import sys
import tempfile

from escaped_names import unescaped

MEMBERS = ['name', 'source', 'size', 'sha256', 'kind', 'file_id', 'puid', 'confidence', 'basis',
           'status', 'error', 'counts', 'losses', 'after_end', 'output', 'format', 'options',
           'module', 'pfsdoc']
WITH_OUTPUT = {'converted', 'damaged'}
NOT_OURS = {'not_a_document', 'skipped'}
STATUSES = WITH_OUTPUT | NOT_OURS | {'unreadable', 'limit', 'memory', 'timeout', 'crashed', 'name',
                                     'kept', 'internal'}
SUM = re.compile('[0-9a-f]{64}')
# What `pfsdoc convert` ends with, and what that makes of a file.
STATUS_OF_CODE = {0: 'converted', 4: 'not_a_document', 5: 'damaged'}


def sum_of(data):
    return hashlib.sha256(data).hexdigest()


def read_file(path):
    with open(path, 'rb') as file:
        return file.read()


class Converter:
    """What `pfsdoc convert` makes of bytes; each question is asked once."""

    def __init__(self, program):
        self.program = program
        self.answers = {}

    def convert(self, data, file_name, arguments):
        """Its exit code and output. The file's name is the document's title in some formats."""
        key = (sum_of(data), file_name, tuple(arguments))
        if key not in self.answers:
            with tempfile.TemporaryDirectory() as folder:
                path = os.path.join(folder.encode(), file_name)
                with open(path, 'wb') as file:
                    file.write(data)
                run = subprocess.run([self.program, 'convert', *arguments, b'--', path],
                                     capture_output=True, timeout=60)
            self.answers[key] = (run.returncode, run.stdout)
        return self.answers[key]


class Manifest:
    """The lines of one manifest and what is wrong with them."""

    def __init__(self, out, path=None):
        self.out = os.fsencode(out)
        self.path = os.fsencode(path) if path else os.path.join(self.out, b'manifest.ndjson')
        self.problems = []
        self.lines = []
        self.read()

    def fail(self, line, words):
        where = line['name'] if isinstance(line, dict) and 'name' in line else line
        self.problems.append('%s: %s' % (ascii(where), words))

    def read(self):
        data = read_file(self.path)
        if data and not data.endswith(b'\n'):
            self.fail('manifest', 'its last line has no end')
        for number, text in enumerate(data.split(b'\n')[:-1], 1):
            try:
                pairs = json.loads(text.decode(), object_pairs_hook=list)
                line = dict_of(pairs)
                self.check_form(number, pairs, line)
                self.lines.append(line)
            except (ValueError, KeyError, TypeError, AttributeError) as error:
                self.fail('line %d' % number, 'malformed: %r' % error)

    # ---- one line by itself ----

    def check_form(self, number, pairs, line):
        if [name for name, _ in pairs] != MEMBERS:
            self.fail('line %d' % number, 'members %s' % [name for name, _ in pairs])
        self.check_names(line)
        self.check_types(line)
        status = line['status']
        if (line['output'] is not None) != (status in WITH_OUTPUT):
            self.fail(line, 'output of status %s: %s' % (status, line['output']))
        if (line['error'] is None) != (status == 'converted'):
            self.fail(line, 'error of status %s: %s' % (status, line['error']))
        if status in WITH_OUTPUT and (line['sha256'] is None or line['kind'] is None):
            self.fail(line, 'an output without a sum of the file, or without a kind')
        kinds = [line[name] is None for name in ('kind', 'file_id', 'confidence', 'basis')]
        if len(set(kinds)) != 1:
            self.fail(line, 'kind, file_id, confidence and basis do not agree')

    def check_names(self, line):
        unescaped(line['source'])
        parts = line['name'].split('/')
        if '' in parts or '.' in parts or '..' in parts:
            self.fail(line, 'not a safe name')
        if line['output'] is not None:
            parts = line['output']['name'].split('/')
            if '' in parts or '.' in parts or '..' in parts:
                self.fail(line, 'its output leads out: %s' % ascii(line['output']['name']))

    def check_types(self, line):
        good = (line['status'] in STATUSES
                and is_count(line['size'])
                and (line['sha256'] is None or SUM.fullmatch(line['sha256']))
                and (line['error'] is None or set(line['error']) - {'offset'} == {'words', 'remedy'})
                and (line['counts'] is None or all(map(is_count, line['counts'].values())))
                and all(map(is_count, line['losses'].values()))
                and (line['after_end'] is None or set(line['after_end']) == {'offset', 'bytes'})
                and (line['output'] is None
                     or (list(line['output']) == ['name', 'size', 'sha256']
                         and is_count(line['output']['size'])
                         and SUM.fullmatch(line['output']['sha256'])))
                and isinstance(line['options'], str) and isinstance(line['format'], str))
        if not good:
            self.fail(line, 'members of a wrong type: %s' % line)

    # ---- the lines and the disk ----

    def check_outputs(self):
        self.check_unique('name', [line['name'] for line in self.lines])
        outputs = [line['output']['name'] for line in self.lines if line['output']]
        self.check_unique('output', outputs)
        for line in self.lines:
            if line['output']:
                self.check_output(line)

    def check_unique(self, what, values):
        for value in sorted({value for value in values if values.count(value) > 1}):
            self.fail(value, 'more than one line has this %s' % what)

    def check_output(self, line):
        path = self.out
        for part in line['output']['name'].encode().split(b'/'):
            path = os.path.join(path, part)
            try:
                mode = os.lstat(path).st_mode
            except OSError as error:
                self.fail(line, 'its output is not there: %s' % error)
                return
            if stat.S_ISLNK(mode):
                self.fail(line, 'its output is reached through a link')
                return
        if not stat.S_ISREG(mode):
            self.fail(line, 'its output is no file')
            return
        data = read_file(path)
        if (len(data), sum_of(data)) != (line['output']['size'], line['output']['sha256']):
            self.fail(line, 'its output on the disk is another one')

    def check_folder(self, foreign, left_over):
        """foreign: paths in OUT, with "/" between parts, that are no outputs; left_over: those
        that outputs of earlier runs may have."""
        known = {line['output']['name'].encode() for line in self.lines if line['output']}
        known |= set(foreign) | set(left_over)
        if os.path.dirname(self.path) == self.out:
            known |= {os.path.basename(self.path) + ending for ending in (b'', b'.earlier')}
        for path in files_below(self.out):
            if path not in known:
                self.fail(path, 'is in the output folder and nothing says why')

    def check_conversions(self, converter, versions, arguments, is_justified):
        """versions: what bytes a sum is of; is_justified: whether a document may fail so."""
        for line in self.lines:
            if line['sha256'] is None:
                if not is_justified(line, None):
                    self.fail(line, 'no sum, and %s: %s' % (line['status'], line['error']))
                continue
            data = versions(line['source'], line['sha256'])
            if data is None:
                self.fail(line, 'nobody wrote a file with the sum %s' % line['sha256'])
            elif len(data) != line['size']:
                self.fail(line, 'size %d instead of %d' % (line['size'], len(data)))
            else:
                self.check_conversion(line, converter, data, arguments, is_justified)

    def check_conversion(self, line, converter, data, arguments, is_justified):
        name = file_name_of(unescaped(line['source']))
        code, output = converter.convert(data, name or b'unnamed', ['-t', line['format'], *arguments])
        expected = STATUS_OF_CODE.get(code, 'code %d of convert' % code)
        if line['status'] != expected:
            if not is_justified(line, expected):
                self.fail(line, 'is %s instead of %s: %s'
                          % (line['status'], expected, line['error']))
        elif line['output'] and name and line['output']['sha256'] != sum_of(output):
            self.fail(line, 'its output is not what convert makes of the file')

    def check_exit_code(self, code, strict=False):
        fine = {'converted'} | ({'skipped'} if strict else NOT_OURS)
        expected = 0 if all(line['status'] in fine for line in self.lines) else 1
        if code != expected:
            self.fail('run', 'exit code %d instead of %d' % (code, expected))

    def check_sources(self, always, archives, is_disturbed=False):
        """Sources as bytes: those that must have a line for each time that they are in the list,
        and archives of which only that is known that they have lines, of their own or of members.
        Where the run was disturbed, a folder or archive may stand for what could not be read."""
        sources = [unescaped(line['source']) for line in self.lines]
        standing = set()
        if is_disturbed:
            standing = {source for source in sources if source not in always
                        and (os.path.isdir(source)
                             or any(is_below(other, source) for other in always + archives))}
        for archive in archives:
            if not (any(is_of_archive(source, archive) for source in sources)
                    or any(is_below(archive, folder) for folder in standing)):
                self.fail(archive, 'no line says what became of it')
        for source in set(always):
            missing = always.count(source) - sources.count(source)
            if missing > 0 and not any(is_below(source, other) for other in standing):
                self.fail(source, 'has %d lines too few' % missing)
        for source in set(sources) - standing:
            most = always.count(source)
            if (sources.count(source) > most
                    and not any(is_of_archive(source, archive) for archive in archives)):
                self.fail(source, 'has %d lines, and was given %d times'
                          % (sources.count(source), most))


def is_below(source, other):
    """In the folder or archive."""
    return source.startswith((other.rstrip(b'/') + b'/', other + b'!/'))


def is_of_archive(source, archive):
    return source == archive or source.startswith(archive + b'!/')


def dict_of(pairs):
    """Objects out of lists of pairs; refuses members that come twice."""
    line = {}
    for name, value in pairs:
        is_object = isinstance(value, list) and all(isinstance(pair, tuple) for pair in value)
        if name in line:
            raise ValueError('member %r comes twice' % name)
        line[name] = dict_of(value) if is_object else value
    return line


def is_count(value):
    return isinstance(value, int) and not isinstance(value, bool) and value >= 0


def file_name_of(source):
    """The name under which convert shows the title that the batch gave this document. Only members
    of archives have names that no file can have."""
    file_name = source.split(b'/')[-1]
    return None if file_name in (b'', b'.', b'..') or len(file_name) > 255 else file_name


def files_below(folder):
    """All that is no folder, links to folders among them, relative to the folder."""
    folder = os.fsencode(folder)
    for above, folders, files in os.walk(folder):
        for name in files + [name for name in folders if os.path.islink(os.path.join(above, name))]:
            yield os.path.relpath(os.path.join(above, name), folder)


def main():
    parser = argparse.ArgumentParser(description='Holds a manifest against the disk.')
    parser.add_argument('--pfsdoc', help='convert each source again with this program')
    parser.add_argument('--manifest', help='OUT/manifest.ndjson unless given')
    parser.add_argument('out')
    request = parser.parse_args()
    manifest = Manifest(request.out, request.manifest)
    manifest.check_outputs()
    manifest.check_folder([], [])
    if request.pfsdoc:
        def version(source, wanted):
            try:
                data = read_file(unescaped(source))
            except OSError:
                return None
            return data if sum_of(data) == wanted else None
        options = manifest.lines[0]['options'].split() if manifest.lines else []
        manifest.check_conversions(Converter(request.pfsdoc), version, options,
                                   lambda line, expected: True)
    print('\n'.join(manifest.problems + ['%d lines, %d problems'
                                         % (len(manifest.lines), len(manifest.problems))]))
    return 1 if manifest.problems else 0


if __name__ == '__main__':
    sys.exit(main())
