"""Runs that are killed, whose system calls fail, or whose inputs change under them; and what the
next run makes of it: the same bytes as a run that nothing disturbed."""

import errno
import os
import shutil
import signal

import trees
from changes import change
from trials import Failure, Trial

ERRORS = [errno.ENOSPC, errno.EIO, errno.EACCES, errno.EMFILE, errno.EINTR]
CODES = (0, 1, 7, 70)


def disturbed(seed, program, converter, samples, size):
    trial = Trial(seed, program, converter, samples, size)
    trial.note_sources()
    return trial


def reference(trial):
    """A run that nothing disturbs; returns the system calls that it made."""
    log = trial.path(b'calls')
    run = trial.run(jobs=2, failing={'CALLS_LOG': os.fsdecode(log)})
    trial.demand(run.code in (0, 1), 'code %d: %s' % (run.code, run.words))
    os.rename(trial.path(trial.out), trial.path(b'whole'))
    with open(log) as file:
        return file.read().split(), run.code


def check_finished(trial, code):
    """Another run brings it to its end, as if nothing had been."""
    is_disturbed, trial.is_disturbed = trial.is_disturbed, False
    run = trial.run()
    try:
        trial.demand(run.code == code, 'code %d instead of %d: %s' % (run.code, code, run.words))
        trial.judge(run)
        trial.check_same(trial.out, b'whole')
    except Failure as failure:
        raise Failure('in the run after it: %s' % failure) from failure
    trial.is_disturbed = is_disturbed


def earlier_files(trial):
    """Of runs before this one, which a run that fails need neither have lines of nor remove."""
    return list(trial.outputs(trial.out))


def temporaries(trial):
    """Of a run in which they could not be removed. The next one does it."""
    return [name for name in trial.outputs(trial.out)
            if os.path.basename(name).startswith(b'.pfsdoc-')]


def check_after_end(trial, run, codes, earlier):
    """However a run ended, nothing it left behind is a lie."""
    trial.demand(run.code in codes, 'code %d: %s' % (run.code, run.words))
    trial.demand(run.code in (0, 1) or run.code < 0 or run.words, 'it ended without a word')
    manifest = trial.path(trial.out + b'/manifest.ndjson')
    if run.code in (0, 1):
        trial.judge(run, left_over=earlier + temporaries(trial))
    elif os.path.exists(manifest):
        trial.judge(None, left_over=list(trial.outputs(trial.out)), checks_sources=False)


# ---- kills ----

def kill(seed, program, converter, samples):
    trial = disturbed(seed, program, converter, samples, size=16)
    try:
        before = trees.snapshot(trial.tree.root)
        calls, code = reference(trial)
        trial.is_disturbed = True
        for _ in range(trial.random.choice([1, 1, 2, 3])):
            kill_once(trial, len(calls))
        check_finished(trial, code)
        trial.check_unchanged(before, trees.snapshot(trial.tree.root), 'an original')
    finally:
        trial.close()


def kill_once(trial, calls):
    way = trial.random.choice(['call', 'call', 'call', 'all', 'one', 'SIGTERM', 'SIGINT'])
    number = str(trial.random.randrange(1, calls + 1))
    earlier = earlier_files(trial)
    if way == 'call':
        action = trial.random.choice(['kill', 'kill_after'])
        run = trial.run(failing={'FAILING_CALL': number, 'FAILING_ACTION': action})
        check_after_end(trial, run, (0, 1, -signal.SIGKILL), earlier)
        return
    run = trial.start(failing={'FAILING_CALL': number, 'FAILING_ACTION': 'stop'})
    if run.wait_until_stopped():
        strike(trial, run, way)
        run.resume()
    check_after_end(trial, run.wait(),
                    {'all': (0, 1, -signal.SIGKILL), 'one': CODES}.get(way, (0, 1, 130)), earlier)


def strike(trial, run, way):
    if way == 'all':
        run.kill_all()
    elif way == 'one':
        run.kill_one(trial.random)
    else:
        os.kill(run.process.pid, getattr(signal, way))


# ---- system calls that fail ----

FAULTS_A_TREE = 20


def faults(seed, program, converter, samples, count=FAULTS_A_TREE):
    trial = disturbed(seed, program, converter, samples, size=9)
    try:
        before = trees.snapshot(trial.tree.root)
        calls, code = reference(trial)
        trial.is_disturbed = True
        for index in range(count):
            fault_once(trial, calls, code, is_sync=index == 0)
        trial.check_unchanged(before, trees.snapshot(trial.tree.root), 'an original')
    finally:
        trial.close()


def fault_once(trial, calls, code, is_sync):
    """Into a folder that is empty, or in which a run was ended, or one has come to its end."""
    shutil.rmtree(trial.path(trial.out), ignore_errors=True)
    state = trial.random.choice(['empty', 'empty', 'ended', 'whole'])
    if state == 'ended':
        trial.run(failing={'FAILING_CALL': str(trial.random.randrange(1, len(calls) + 1)),
                           'FAILING_ACTION': 'kill'})
    elif state == 'whole':
        trial.run()
    number = 0 if is_sync else trial.random.randrange(1, len(calls) + 1)
    error = trial.random.choice(ERRORS)
    log = trial.path(b'failed_calls')
    failing = {'FAILING_ACTION': str(error), 'CALLS_LOG': os.fsdecode(log)}
    failing['FAILING_CALL' if number else 'FAILING_SYNC'] = str(number or 1)
    earlier = earlier_files(trial)
    call = 'syncfs'
    try:
        run = trial.run(failing=failing)
        call = failed_call(log, number) if number else call
        check_after_end(trial, run, CODES, earlier)
        check_finished(trial, code)
    except Exception as failure:
        raise Failure('call %d (%s) fails with %s, the folder is %s\n%s'
                      % (number, call, errno.errorcode[error], state, failure)) from failure


def failed_call(log, number):
    """The order of calls is another one in each run."""
    with open(log) as file:
        calls = file.read().split()
    os.unlink(log)
    return calls[number - 1] if number <= len(calls) else 'none'


# ---- inputs that change ----

def changes(seed, program, converter, samples):
    trial = disturbed(seed, program, converter, samples, size=16)
    try:
        calls, _ = reference(trial)
        trial.is_disturbed = True
        run = change_during(trial, len(calls))
        trial.demand(run.code in (0, 1), 'code %d: %s' % (run.code, run.words))
        left_over = list(trial.outputs(trial.out))
        trial.judge(run, left_over=left_over, checks_sources=False)
        trial.is_disturbed = False
        trial.note_sources()
        before = trees.snapshot(trial.tree.root)
        second = trial.run()
        left_over = list(trial.outputs(trial.out))
        trial.judge(second, left_over=left_over)
        trial.check_unchanged(before, trees.snapshot(trial.tree.root), 'an original')
    finally:
        trial.close()


def change_during(trial, calls):
    number = str(trial.random.randrange(1, calls + 1))
    run = trial.start(failing={'FAILING_CALL': number, 'FAILING_ACTION': 'stop'})
    if run.wait_until_stopped():
        for _ in range(trial.random.randrange(1, 5)):
            change(trial.tree, trial.rewritten)
        run.resume()
    for _ in range(trial.random.randrange(6)):
        change(trial.tree, trial.rewritten)
    return run.wait()
