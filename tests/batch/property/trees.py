"""Random trees of files to convert: what people have, what is damaged, and what means harm."""

import io
import os
import tarfile
import warnings
import zipfile

NAMES = [
    b'LETTER', b'letter', b'Letter.DOC', b'LETTER.txt', b'LETTER.html', b'REPORT.PFS', b'a', b'a.txt',
    b'a.html', b'b', b'a (2)', b'a (2).txt', b'caf\x82.pfs', b'caf\\x82.pfs', b'caf\xc3\xa9',
    b'cafe\xcc\x81', b'STRASSE', 'straße'.encode(), 'K'.encode(), b'k', 'ſ'.encode(), b's',
    b'line\nend', b'tab\tstop', b'\x1b[31mred', b'\x7f', b'\xc2\x85', b'back\\slash', b'back\\',
    b'\\x2E\\x2E', b'...', b'..x', b' ', b' a', b'a ', b'-o', b'--help', b'~', b'$HOME', b'*', b'a!',
    b'"quoted"', b"it's", b'<b>&amp;', b'%s%n', b'{}', b'\xff\xfe', b'\xed\xa0\x80', b'\xf4\x90\x80\x80',
    b'\xc0\xaf', '\u202egpj.doc'.encode(), '\u200f'.encode(), '\u2028'.encode(), '\ufeffx'.encode(),
    '\ufffe'.encode(), '\uffff'.encode(), '\ufdd0'.encode(), '\U0001fffe'.encode(), '文書'.encode(),
    b'manifest', b'manifest.ndjson', b'manifest.ndjson.partial', b'manifest.ndjson.earlier',
    b'.pfsdoc-0123456789abcdef', b'.pfsdoc-', b'.pfsdoc-lock', b'.hidden', b'con', b'NUL', b'x' * 255,
    'é'.encode() * 127, b'y' * 200 + b'1', b'y' * 200 + b'2', b'\x82' * 100, b'core', b'index.html',
]
FOLDERS = NAMES + [b'a.txt', b'a.html', b'LETTER.txt', b'disk', b'sub', b'x.zip', b'manifest.ndjson']
ARCHIVES = [b'old.zip', b'OLD.ZIP', b'disk.tar', b'disk.tar.gz', b'letters.tgz', b'x.tar.xz']
MEMBERS = [b'LETTER', b'letter', b'sub/LETTER', b'sub/a', b'a', b'caf\xc3\xa9', b'deep/er/still/x']
ODD_MEMBERS = [b'../LETTER', b'/etc/LETTER', b'sub\\LETTER', b'./a', b'a', b'a/', b'..', b'sub//x',
               b'.', b'\x1b[2J', b'x' * 300]


class Tree:
    """A folder on the disk, with what was ever written there."""

    def __init__(self, random, root, samples):
        self.random = random
        self.root = os.fsencode(root)
        self.samples = samples
        self.contents = {}  # of each path, the bytes that it ever had
        self.members = {}   # of each archive, the names that must appear; None where that is open
        os.makedirs(self.root)

    # ---- contents ----

    def document(self):
        """Mostly letters that can be converted; each is another one."""
        random = self.random
        data = random.choice(self.samples)
        choice = random.random()
        if choice < 0.55:
            return data + b'number %d' % random.randrange(10 ** 6)
        if choice < 0.65:
            return data[:random.randrange(len(data))]
        if choice < 0.75:
            return self.damaged(data)
        if choice < 0.85:
            return random.randbytes(random.randrange(3000))
        if choice < 0.9:
            return b''
        return data

    def damaged(self, data):
        data = bytearray(data)
        for _ in range(self.random.randrange(1, 20)):
            data[self.random.randrange(len(data))] = self.random.randrange(256)
        return bytes(data)

    def write(self, path, data):
        with open(path, 'wb') as file:
            file.write(data)
        self.remember(path, data)

    def remember(self, path, data):
        self.contents.setdefault(os.path.realpath(path), []).append(data)

    # ---- entries ----

    def free_path(self, folder, names):
        for _ in range(20):
            path = os.path.join(folder, self.random.choice(names))
            if not os.path.lexists(path) and len(path) < 3500:
                return path
        return None

    def fill(self, count):
        for _ in range(count):
            self.add_entry()
        return self

    def folders(self):
        return [self.root] + [os.path.join(above, name) for above, names, _ in os.walk(self.root)
                              for name in names
                              if not os.path.islink(os.path.join(above, name))]

    def add_entry(self):
        kinds = [(0.62, self.add_document), (0.78, self.add_folder), (0.86, self.add_archive),
                 (0.93, self.add_link), (0.96, self.add_hard_link), (1.0, self.add_pipe)]
        choice = self.random.random()
        add = next(add for limit, add in kinds if choice < limit)
        names = {self.add_folder: FOLDERS, self.add_archive: ARCHIVES}.get(add, NAMES)
        path = self.free_path(self.random.choice(self.folders()), names)
        if path is not None:
            add(path)

    def add_document(self, path):
        self.write(path, self.document())

    def add_folder(self, path):
        os.mkdir(path)

    def add_link(self, path):
        targets = [b'nowhere', b'/etc/passwd', b'.', b'..', self.root] + self.files()
        os.symlink(self.random.choice(targets), path)

    def add_hard_link(self, path):
        if self.files():
            source = self.random.choice(self.files())
            os.link(source, path)
            self.contents[os.path.realpath(path)] = self.contents[source]

    def add_pipe(self, path):
        os.mkfifo(path)

    def files(self):
        """Regular files that are no archives, sorted, so that a seed means the same everywhere."""
        return sorted(path for path in self.contents
                      if path.startswith(self.root + b'/') and path not in self.members
                      and os.path.isfile(path) and not os.path.islink(path))

    # ---- archives ----

    def add_archive(self, path):
        is_odd = self.random.random() < 0.3
        names = MEMBERS + ODD_MEMBERS if is_odd else MEMBERS
        members = [(name, self.document())
                   for name in self.random.sample(names, self.random.randrange(1, 6))]
        data = zip_of(members) if path.lower().endswith(b'zip') else tar_of(members, path)
        is_whole = self.random.random() < 0.7
        if not is_whole:
            data = data[:self.random.randrange(len(data))]
        self.write(path, data)
        self.members[os.path.realpath(path)] = \
            [name for name, _ in members] if is_whole and not is_odd else None
        for _, data in members:
            self.remember(path, data)


def zip_of(members):
    data = io.BytesIO()
    warnings.simplefilter('ignore')  # two members of one name are among the odd ones
    with zipfile.ZipFile(data, 'w', zipfile.ZIP_DEFLATED) as archive:
        for name, content in members:
            entry = zipfile.ZipInfo(name.decode('utf-8', 'replace'))
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, content)
    return data.getvalue()


def tar_of(members, path):
    data = io.BytesIO()
    ending = 'xz' if path.endswith(b'.xz') else 'gz' if path.endswith((b'gz', b'GZ')) else ''
    with tarfile.open(fileobj=data, mode='w:' + ending, format=tarfile.GNU_FORMAT,
                      encoding='utf-8', errors='surrogateescape') as archive:
        for name, content in members:
            entry = tarfile.TarInfo(os.fsdecode(name))
            entry.size = len(content)
            archive.addfile(entry, io.BytesIO(content))
    return data.getvalue()


def sources_of(given, out, members):
    """What a path on the command line or in a list stands for: the sources that must have a line,
    and the archives of which no more is known than that they must. The folder OUT is passed over."""
    sources, archives = [], []
    excluded = identity(out)

    def visit(path, follows_links):
        is_link = os.path.islink(path) and not follows_links
        real = os.path.realpath(path)
        if os.path.isdir(path) and not is_link:
            for entry in os.listdir(path):
                found = path + (b'' if path.endswith(b'/') else b'/') + entry
                if os.path.islink(found) or not excluded or identity(found) != excluded:
                    visit(found, False)
        elif is_link or real not in members:
            sources.append(path)
        elif members[real] is None:
            archives.append(path)
        else:
            sources.extend(path + b'!/' + name for name in members[real])

    visit(given, True)
    return sources, archives


def identity(path):
    try:
        status = os.stat(path)
    except OSError:
        return None
    return status.st_dev, status.st_ino


def snapshot(root):
    """All that is below a folder: each entry's type, mode and content."""
    state = {}
    for above, folders, files in os.walk(os.fsencode(root)):
        for name in folders + files:
            path = os.path.join(above, name)
            state[path] = state_of(path)
    return state


def state_of(path):
    status = os.lstat(path)
    if os.path.islink(path):
        return 'link', os.readlink(path)
    if os.path.isfile(path):
        with open(path, 'rb') as file:
            return 'file', status.st_mode, file.read()
    return 'other', status.st_mode
