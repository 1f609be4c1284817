"""Reads the texts of the reference, whose format docs/manual/README.md describes."""
import re
from dataclasses import dataclass, field

FIELDS = ('Result', 'Failure', 'Note', 'Text', 'Cause', 'Cure')


class Missing(Exception):
    """A text that the manual lacks, or one that belongs to nothing."""


@dataclass
class Section:
    title: str
    prose: str = ''
    items: dict = field(default_factory=dict)
    fields: dict = field(default_factory=dict)


@dataclass
class Facts:
    """What is true of a method in every language: the kinds of its arguments, its calls in scripts, what to read next."""
    kinds: dict = field(default_factory=dict)
    safety: str = ''
    codes: list = field(default_factory=list)
    see: list = field(default_factory=list)
    raises: str = ''
    samples: dict = field(default_factory=dict)


def read_file(path):
    try:
        with open(path, encoding='utf-8') as source:
            return source.read()
    except FileNotFoundError:
        raise Missing(f'{path} does not exist') from None


def parts(path):
    """The title of a file, what stands before its first section, and the texts of its sections by their headings."""
    head, *rest = re.split(r'^## +', read_file(path), flags=re.M)
    title = re.match(r'# +(.+)\n', head)
    if not title:
        raise Missing(f'{path} has no title')
    sections = {}
    for text in rest:
        name, _, body = text.partition('\n')
        if name.strip() in sections:
            raise Missing(f'{path}: {name.strip()} stands twice')
        sections[name.strip()] = body.strip()
    return title[1].strip(), head[title.end():].strip(), sections


def read_section(path, title, text):
    """Paragraphs, then items of a list ("- `name`: text"), then fields ("Result: text"); all but the first may lack."""
    section = Section(title)
    prose = []
    for block in re.split(r'\n\s*\n', text):
        kind = re.match(r'(\w+): ', block)
        if kind and kind[1] in FIELDS:
            section.fields[kind[1]] = block[kind.end():].strip()
        elif block.startswith('- `'):
            for item in re.split(r'^- ', block, flags=re.M)[1:]:
                found = re.match(r'`([^`]+)`: +(.+)', item, re.S)
                if not found:
                    raise Missing(f'{path}: {title}: an item without a text: {item.strip()}')
                section.items[found[1]] = found[2].strip()
        elif block.strip():
            prose.append(block)
    section.prose = '\n\n'.join(prose)
    if not section.prose and not section.items:
        raise Missing(f'{path}: {title} has no text')
    return section


def read_sections(path):
    """The title of a file of texts, its introduction, and its sections."""
    title, introduction, texts = parts(path)
    return title, introduction, {name: read_section(path, name, text) for name, text in texts.items()}


def read_facts(path):
    """The facts of a class's methods."""
    result = {}
    for name, text in parts(path)[2].items():
        facts = Facts()
        for language, code in re.findall(r'^```(\w+)\n(.*?)^```$', text, re.M | re.S):
            facts.samples[language] = code.rstrip()
        for line in re.sub(r'^```.*?^```$', '', text, flags=re.M | re.S).split('\n'):
            key, colon, value = line.partition(':')
            key, value = key.strip(), value.strip()
            if not colon:
                if line.strip():
                    raise Missing(f'{path}: {name}: {line}')
            elif key == 'safety':
                facts.safety = value
            elif key == 'codes':
                facts.codes = value.split()
            elif key == 'see':
                facts.see = value.split()
            elif key == 'raises':
                facts.raises = value
            else:
                facts.kinds[key] = value
        result[name] = facts
    return result


def compare(what, expected, given):
    """Raises Missing unless both name the same, each of them once."""
    lacking = [name for name in expected if name not in given]
    foreign = [name for name in given if name not in expected]
    if lacking:
        raise Missing(f'{what}: no text for {", ".join(lacking)}')
    if foreign:
        raise Missing(f'{what}: {", ".join(foreign)}: no such thing')
