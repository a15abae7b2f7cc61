"""Starts batches, ends them, and changes what they read while they run."""

import os
import signal
import subprocess
import time

LONGEST_RUN = 60  # seconds


class Hang(Exception):
    pass


class Program:
    def __init__(self, pfsdoc, failing_calls):
        self.pfsdoc = os.fsencode(os.path.realpath(pfsdoc))
        self.failing_calls = os.path.realpath(failing_calls)

    def start(self, folder, arguments, failing=None, standard_input=None):
        """failing: the variables that failing_calls.c explains."""
        environment = dict(os.environ)
        if failing:
            environment.update(failing, LD_PRELOAD=self.failing_calls)
        stdin = subprocess.DEVNULL if standard_input is None else subprocess.PIPE
        process = subprocess.Popen([self.pfsdoc, b'batch', *arguments], cwd=folder,
                                   env=environment, stdin=stdin, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE, start_new_session=True)
        return Run(process, standard_input)

    def run(self, folder, arguments, failing=None, standard_input=None):
        return self.start(folder, arguments, failing, standard_input).wait()


class Run:
    """One batch; its code is negative when a signal ended it."""

    def __init__(self, process, standard_input=None):
        self.process = process
        self.standard_input = standard_input
        self.code = None
        self.words = ''

    def wait(self, seconds=LONGEST_RUN):
        try:
            _, words = self.process.communicate(self.standard_input, timeout=seconds)
        except subprocess.TimeoutExpired:
            self.kill_all()
            self.process.communicate()
            raise Hang('the batch did not end in %d seconds' % seconds) from None
        self.code = self.process.returncode
        self.words = words.decode('utf-8', 'backslashreplace')
        self.wait_for_others()
        return self

    def wait_for_others(self):
        """Whatever ends the batch ends its processes."""
        for _ in range(200):
            try:
                os.killpg(self.process.pid, 0)
            except ProcessLookupError:
                return
            time.sleep(0.02)
        self.kill_all()
        raise Hang('processes of the batch outlived it')

    def kill_all(self, number=signal.SIGKILL):
        try:
            os.killpg(self.process.pid, number)
        except ProcessLookupError:
            pass

    def others(self):
        """The processes below the batch's own, in the order of their numbers."""
        found, waiting = [], [self.process.pid]
        while waiting:
            number = waiting.pop()
            try:
                with open('/proc/%d/task/%d/children' % (number, number)) as file:
                    children = [int(child) for child in file.read().split()]
            except OSError:
                continue
            found += children
            waiting += children
        return sorted(found)

    def kill_one(self, random):
        others = self.others()
        if others:
            try:
                os.kill(random.choice(others), signal.SIGKILL)
            except ProcessLookupError:
                pass

    def wait_until_stopped(self):
        """Whether it has stopped; not when it has ended."""
        end = time.monotonic() + LONGEST_RUN
        while time.monotonic() < end:
            try:
                with open('/proc/%d/stat' % self.process.pid) as file:
                    state = file.read().rsplit(')', 1)[1].split()[0]
            except OSError:
                return False
            if state in 'TZX':
                return state == 'T'
            time.sleep(0.001)
        return False

    def resume(self):
        os.kill(self.process.pid, signal.SIGCONT)
