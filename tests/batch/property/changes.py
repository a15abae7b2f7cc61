"""Changes to what a batch reads, while it reads."""

import hashlib
import os

WAYS = ['rewrite', 'append', 'cut', 'replace', 'delete', 'link', 'create', 'exchange']


def change(tree, rewritten):
    """One change somewhere in the tree. rewritten: takes the paths that were changed in place."""
    files = tree.files()
    if not files:
        return
    path = tree.random.choice(files)
    way = tree.random.choice(WAYS)
    if way in ('rewrite', 'append', 'cut'):
        rewritten.add(path)
    globals()['do_' + way](tree, path)


def read(path):
    with open(path, 'rb') as file:
        return file.read()


def do_rewrite(tree, path):
    tree.write(path, tree.document())


def do_append(tree, path):
    tree.write(path, read(path) + b'more')


def do_cut(tree, path):
    data = read(path)
    os.truncate(path, len(data) // 2)
    tree.remember(path, data[:len(data) // 2])


def do_replace(tree, path):
    replace(tree, path, tree.document())


def replace(tree, path, data):
    temporary = os.path.join(os.path.dirname(tree.root), b'replacement')
    with open(temporary, 'wb') as file:
        file.write(data)
    tree.remember(path, data)
    os.rename(temporary, path)


def do_delete(tree, path):
    os.unlink(path)


def do_link(tree, path):
    os.unlink(path)
    os.symlink(b'/etc/passwd', path)


def do_create(tree, path):
    created = tree.free_path(os.path.dirname(path), [b'new1', b'new2', b'A', b'zz'])
    if created:
        tree.write(created, tree.document())


def do_exchange(tree, path):
    other = tree.random.choice(tree.files())
    if other != path and os.path.exists(other):
        first, second = read(path), read(other)
        replace(tree, path, second)
        replace(tree, other, first)


def mixed_version(versions, wanted):
    """The bytes of a file that was changed in place while it was read: the beginning of one
    version and the rest of another, whose sum is this; or None."""
    for first in versions:
        for second in versions + [b'']:
            begun = hashlib.sha256()
            for cut in range(len(first) + 1):
                whole = begun.copy()
                whole.update(second[cut:])
                if whole.hexdigest() == wanted:
                    return first[:cut] + second[cut:]
                begun.update(first[cut:cut + 1])
    return None
