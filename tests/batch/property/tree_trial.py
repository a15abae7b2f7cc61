"""A run that nothing disturbs, over a random tree: the manifest is true, a second run changes
nothing, neither does another number of workers, and --verify says the same as we do."""

import os

import trees
from trials import Trial


def set_inputs(trial):
    """Names what is to be read in one of the ways there are."""
    random = trial.random
    way = random.choice(['folder', 'folder', 'inside', 'several', 'list', 'names', 'here', 'onto',
                         'around', 'same'])
    if way == 'inside':
        trial.out = b'in/out'
    elif way == 'several':
        trial.inputs = [random.choice([b'in', b'./in', b'in/', b'in/../in', trial.tree.root])
                        for _ in range(random.choice([1, 1, 2]))]
        trial.inputs += [os.path.join(b'.', relative(trial, path))
                         for path in some_files(trial)]
    elif way in ('list', 'names') and trial.tree.files():
        set_list(trial, is_text=way == 'list')
    elif way == 'here':
        trial.out = b'in/here'
        os.mkdir(trial.path(trial.out))
    elif way in AMONG_ORIGINALS:
        set_inputs_among_originals(trial, way)
    return way


# Ways in which the output folder holds originals: where each file is named, where a folder in it is
# read, and where it is itself read.
AMONG_ORIGINALS = ('onto', 'around', 'same')


def set_inputs_among_originals(trial, way):
    trial.out = b'in'
    if way == 'onto':
        trial.inputs = [relative(trial, path) for path in trial.tree.files()
                        if os.path.dirname(path) == trial.tree.root]
    elif way == 'around':
        trial.inputs = [relative(trial, path) for path in trial.tree.folders()[1:]
                        if os.path.dirname(path) == trial.tree.root]
    trial.inputs = trial.inputs or [b'in']


def relative(trial, path):
    return os.path.relpath(path, trial.folder)


def some_files(trial):
    files = trial.tree.files()
    return trial.random.sample(files, min(len(files), trial.random.randrange(1, 6)))


def set_list(trial, is_text):
    names = [relative(trial, path) for path in some_files(trial)]
    names = [name for name in names if not is_text or b'\n' not in name]
    trial.inputs = []
    trial.listed = names
    trial.standard_input = b''.join(name + (b'\n' if is_text else b'\0') for name in names)
    trial.list_option = ['--files-from', '-']


def plant(trial, out):
    """Files and links in the output folder, at names that outputs will have."""
    random = trial.random
    os.mkdir(trial.path(out))
    for path in some_files(trial):
        name = os.path.relpath(path, trial.tree.root) + b'.' + trial.extension
        target = os.path.join(trial.path(out), b'in', name)
        if random.random() < 0.5 or len(os.path.basename(target)) > 255:
            continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        way = random.choice(['file', 'folder', 'link', 'link_to_input', 'hard_link'])
        if os.path.lexists(target):
            continue
        if way == 'file':
            with open(target, 'wb') as file:
                file.write(b'my own work')
        elif way == 'folder':
            os.mkdir(target)
        elif way == 'hard_link':
            os.link(path, target)
        else:
            os.symlink(path if way == 'link_to_input' else b'/nowhere', target)
    if random.random() < 0.3:
        if not os.path.lexists(trial.path(out + b'/in')):
            os.symlink(trial.tree.root, trial.path(out + b'/in'))


def run(seed, program, converter, samples):
    trial = Trial(seed, program, converter, samples, size=14)
    try:
        way = set_inputs(trial)
        check(trial, way, has_plants=trial.random.random() < 0.4 and way == 'folder')
    finally:
        trial.close()


def check(trial, way, has_plants):
    if has_plants:
        plant(trial, trial.out)
        trial.foreign = trees.snapshot(trial.path(trial.out))
        os.mkdir(trial.path(b'again'))
        copy_plants(trial, b'again')
    trial.note_sources()
    before = trees.snapshot(trial.tree.root)
    if way in AMONG_ORIGINALS:
        trial.foreign = before
    first = trial.run()
    if way in AMONG_ORIGINALS and first.code in (2, 7):
        trial.check_unchanged(before, trees.snapshot(trial.tree.root), 'refused, but')
        return
    trial.demand(first.code in (0, 1), 'code %d: %s' % (first.code, first.words))
    trial.judge(first)
    check_inputs(trial, before)
    check_foreign(trial)
    done = trial.outputs(trial.out)
    second = trial.run()
    trial.judge(second)
    trial.check_unchanged(done, trial.outputs(trial.out), 'by a second run')
    if way == 'folder':
        check_other_workers(trial, first.code, has_plants)
    check_inputs(trial, before)
    check_foreign(trial)
    check_verification(trial)


def check_other_workers(trial, code, has_plants):
    """The same run into the same folder as it was before the first one. Its name must be the same,
    since messages have it."""
    os.rename(trial.path(trial.out), trial.path(b'first'))
    if has_plants:
        os.rename(trial.path(b'again'), trial.path(trial.out))
    run = trial.run(jobs=trial.random.choice([1, 2, 4]))
    trial.demand(run.code == code, 'code %d, then %d' % (code, run.code))
    trial.check_same(b'first', trial.out)


def copy_plants(trial, out):
    """The same plants in another folder."""
    for path, state in sorted(trial.foreign.items()):
        target = os.path.join(trial.path(out), os.path.relpath(path, trial.path(trial.out)))
        os.makedirs(os.path.dirname(target), exist_ok=True)
        if state[0] == 'link':
            os.symlink(state[1], target)
        elif state[0] == 'file':
            os.link(path, target)
        else:
            os.makedirs(target, exist_ok=True)


def check_inputs(trial, before):
    """All that was there before, and but for outputs nothing else."""
    after = trees.snapshot(trial.tree.root)
    out = trial.path(trial.out)
    for path in [path for path in after if path not in before]:
        if path == out or path.startswith(out + b'/'):
            del after[path]
    trial.check_unchanged(before, after, 'an original')


def check_foreign(trial):
    now = trees.snapshot(trial.path(trial.out))
    kept = {path: now.get(path) for path in trial.foreign}
    trial.check_unchanged(trial.foreign, kept, 'not ours')


def check_verification(trial):
    """A true manifest is accepted, and one that an output does not agree with is not. Files that
    are not of the batch may be reported."""
    run = trial.program.run(trial.folder, ['--verify', trial.out])
    trial.demand(run.code == 0 or (trial.foreign and run.code == 1),
                 '--verify: code %d: %s' % (run.code, run.words))
    outputs = [line['output']['name'].encode() for line in trial.judge(None).lines
               if line['output']]
    if outputs:
        path = os.path.join(trial.path(trial.out), trial.random.choice(outputs))
        with open(path, 'ab') as file:
            file.write(b'!')
        run = trial.program.run(trial.folder, ['--verify', trial.out])
        trial.demand(run.code == 1, '--verify of a changed output: code %d' % run.code)
