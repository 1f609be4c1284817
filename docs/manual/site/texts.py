"""All texts of one language, compared with the type library: nothing lacks, and nothing describes what is not there."""
import glob
import os
import re

import source
from source import Missing

# What a refused argument of a kind gives; docs/manual/README.md lists the kinds.
INVALID, NO_MEMORY, DENIED = '0xE0690057', '0xE069000E', '0xE0690005'
KIND_CODES = {
    'object': [INVALID], 'object-or-nothing': [INVALID], 'session-parameter': [INVALID], 'stream': [INVALID],
    'flags': [], 'number': [], 'switch': [], 'bytes': [INVALID], 'path': [INVALID], 'path-or-none': [], 'text': [],
    'other': [], 'bytes-out': [INVALID, NO_MEMORY], 'bytes-out-plain': [INVALID, NO_MEMORY],
    'bytes-out-switch': [INVALID, NO_MEMORY], 'bytes-out-stream': [INVALID, NO_MEMORY], 'text-out': [INVALID], 'string-out': [INVALID],
    'objects-out': [INVALID], 'object-out': [INVALID], 'count-out': [INVALID],
    'legacy-path': [], 'legacy-text': [], 'legacy-number': [],
}
SAFETY = ('memory', 'file', 'exempt', 'legacy')
SCRIPTS = ('vbscript', 'jscript')
COMMON = ('threads', 'memory', 'scripts')


class Texts:
    """The texts of one language."""

    def __init__(self, library, root, language):
        folder = os.path.join(root, language, 'reference')
        self.language = language
        self.classes = {}
        self.kinds = source.parts(os.path.join(folder, 'kinds.md'))[2]
        self.enumerations = source.read_sections(os.path.join(folder, 'enums.md'))
        self.codes = source.read_sections(os.path.join(folder, 'codes.md'))
        self.chapters = read_chapters(os.path.join(root, language, 'chapters'))
        for name in COMMON + tuple(f'safety-{word}' for word in SAFETY) + tuple(k for k in KIND_CODES if k != 'other'):
            if not self.kinds.get(name):
                raise Missing(f'{language}: kinds.md has no {name}')
        self.ready = source.read_section('kinds.md', 'scripts', self.kinds['scripts']).items
        for cls in library.classes:
            path = os.path.join(folder, f'{cls.name}.md')
            title, introduction, sections = source.read_sections(path)
            if title != cls.name or not introduction:
                raise Missing(f'{path}: not a text of {cls.name}')
            source.compare(path, [member.name for member in cls.methods + cls.properties], sections)
            for method in cls.methods:
                check_method(path, method, sections[method.name])
            self.classes[cls.name] = (introduction, sections)
        self.check_enumerations(library)
        self.check_codes()

    def check_enumerations(self, library):
        sections = self.enumerations[2]
        source.compare(f'{self.language}: enums.md', [e.name for e in library.enumerations], sections)
        for enumeration in library.enumerations:
            what = f'{self.language}: enums.md: {enumeration.name}'
            source.compare(what, [member.name for member in enumeration.members], sections[enumeration.name].items)

    def check_codes(self):
        for title, section in self.codes[2].items():
            if not section.prose or not section.fields.get('Cause') or not section.fields.get('Cure'):
                raise Missing(f'{self.language}: codes.md: {title}: no cause or cure')

    def kind(self, words):
        """The text of a kind of argument, such as "bytes-out data"."""
        name, *rest = words.split()
        return self.kinds[name].replace('{0}', ' '.join(f'`{word}`' for word in rest))

    def code(self, code):
        """The section of a code."""
        for title, section in self.codes[2].items():
            if title.split()[0] == code:
                return section
        raise Missing(f'{self.language}: codes.md has no {code}')


def check_method(path, method, section):
    source.compare(f'{path}: {method.name}', [argument.name for argument in method.arguments], section.items)
    for name in ('Result', 'Failure'):
        if not section.fields.get(name):
            raise Missing(f'{path}: {method.name}: no {name}')
    if not section.prose:
        raise Missing(f'{path}: {method.name}: no description')


def read_chapters(folder):
    """Pairs of a chapter's name and its text, in order."""
    result = []
    for path in sorted(glob.glob(os.path.join(folder, '*.md'))):
        text = source.read_file(path)
        if not re.match(r'# +\S', text):
            raise Missing(f'{path} has no title')
        result.append((os.path.basename(path)[:-3], text))
    return result


def read_all_facts(library, root):
    """The facts of every method, by class and name."""
    result = {}
    for cls in library.classes:
        if not cls.methods:
            continue
        path = os.path.join(root, 'reference', f'{cls.name}.md')
        facts = source.read_facts(path)
        source.compare(path, [method.name for method in cls.methods], facts)
        for method in cls.methods:
            check_facts(f'{path}: {method.name}', method, facts[method.name])
        result[cls.name] = facts
    return result


def check_facts(what, method, facts):
    source.compare(what, [argument.name for argument in method.arguments], facts.kinds)
    for argument, kind in facts.kinds.items():
        if kind.split()[0] not in KIND_CODES:
            raise Missing(f'{what}: {argument}: no such kind')
        given = next(a for a in method.arguments if a.name == argument)
        if kind != 'other' and given.is_output != ('-out' in kind):
            raise Missing(f'{what}: {argument}: a kind of another direction')
    if facts.safety not in SAFETY:
        raise Missing(f'{what}: no safety')
    source.compare(f'{what}: scripts', SCRIPTS, facts.samples)
    if not facts.see:
        raise Missing(f'{what}: nothing to see')


def codes_of(facts):
    """The codes that a method returns; "0xE069xxxx" stands for those of the engine."""
    codes = [DENIED] if facts.safety == 'file' else []
    for kind in facts.kinds.values():
        codes += KIND_CODES[kind.split()[0]]
    codes += [code for code in facts.codes if code != 'own']
    if 'own' not in facts.codes:
        codes.append('0xE069xxxx')
    return list(dict.fromkeys(codes))
