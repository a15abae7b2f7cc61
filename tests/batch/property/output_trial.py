"""What people do to the outputs and the manifest between two runs."""

import json
import os

import trees
from trials import Trial


def run(seed, program, converter, samples):
    trial = Trial(seed, program, converter, samples, size=14)
    try:
        trial.note_sources()
        before = trees.snapshot(trial.tree.root)
        first = trial.run()
        lines = trial.judge(first).lines
        foreign = meddle(trial, [line['output']['name'].encode() for line in lines
                                 if line['output']])
        if trial.random.random() < 0.5:
            edit_manifest(trial)
        check_next_run(trial, foreign)
        check_overwriting(trial, foreign)
        trial.check_unchanged(before, trees.snapshot(trial.tree.root), 'an original')
    finally:
        trial.close()


def meddle(trial, outputs):
    """Changes outputs; returns the paths of those that are somebody's work now."""
    foreign = []
    for name in trial.random.sample(outputs, min(len(outputs), 4)):
        path = os.path.join(trial.path(trial.out), name)
        way = trial.random.choice(['edit', 'replace', 'delete', 'link', 'folder', 'mode'])
        if way == 'edit':
            with open(path, 'ab') as file:
                file.write(b'what I added')
        elif way == 'replace':
            os.unlink(path)
            with open(path, 'wb') as file:
                file.write(b'my own')
        elif way == 'mode':
            os.chmod(path, 0o600)
        else:
            os.unlink(path)
            if way == 'link':
                os.symlink(trial.tree.root + b'/target', path)
            elif way == 'folder':
                os.mkdir(path)
        if way in ('edit', 'replace', 'link'):
            foreign.append(path)
    return foreign


def edit_manifest(trial):
    """Lies that can be found out by looking at the disk, and lines that are none."""
    random = trial.random
    path = trial.path(trial.out + b'/manifest.ndjson')
    with open(path, 'rb') as file:
        lines = file.read().split(b'\n')[:-1]
    for _ in range(random.randrange(1, 4)):
        index = random.randrange(len(lines)) if lines else 0
        lines[index:index + 1] = edited(random, lines[index] if lines else b'{}')
    with open(path, 'wb') as file:
        file.write(b''.join(line + b'\n' for line in lines))


def edited(random, line):
    """Lines in place of one."""
    try:
        members = json.loads(line)
    except (ValueError, RecursionError):
        return []
    way = random.choice(['gone', 'twice', 'junk', 'deep', 'long', 'cut', 'member', 'output'])
    if way == 'member':
        members[random.choice(['name', 'size', 'sha256', 'status', 'format', 'output'])] = \
            random.choice([None, '', -1, '..', 'unchanged', 10 ** 30, [], {}])
    elif way == 'output' and members.get('output'):
        members['output'][random.choice(['name', 'size', 'sha256'])] = \
            random.choice([None, '', -1, '../in', '/etc/passwd', 'manifest.ndjson', '0' * 64])
    changed = json.dumps(members, ensure_ascii=False).encode()
    return {'gone': [], 'twice': [line, line], 'junk': [b'\0\xff junk', line],
            'deep': [b'[' * 50000, line], 'long': [b'{"name":"' + b'x' * 2000000 + b'"}', line],
            'cut': [line[:len(line) // 2]]}.get(way, [changed])


def check_next_run(trial, foreign):
    """What somebody has worked on stays, and the lines say so."""
    trial.foreign = {path: trees.state_of(path) for path in foreign}
    done = list(trial.outputs(trial.out))
    run = trial.run()
    if run.code == 7:  # a manifest that is none is somebody's own
        trial.demand('manifest' in run.words, run.words)
        os.unlink(trial.path(trial.out + b'/manifest.ndjson'))
        run = trial.run()
    trial.demand(run.code in (0, 1), 'code %d: %s' % (run.code, run.words))
    trial.judge(run, left_over=done)
    trial.check_unchanged(trial.foreign, {path: trees.state_of(path) for path in foreign},
                          'not ours')


def check_overwriting(trial, foreign):
    """All but what is no regular file is made again."""
    done = list(trial.outputs(trial.out))
    trial.foreign = {path: state for path, state in trial.foreign.items() if state[0] != 'file'}
    run = trial.run(more=['--overwrite'])
    manifest = trial.judge(run, left_over=done)
    kept = [line['name'] for line in manifest.lines if line['status'] == 'kept'
            and os.path.isfile(os.path.join(trial.path(trial.out), line['name'].encode()
                                            + b'.' + trial.extension))
            and not os.path.islink(os.path.join(trial.path(trial.out), line['name'].encode()
                                                + b'.' + trial.extension))]
    trial.demand(not kept, 'kept in spite of --overwrite: %s' % ascii(kept))
