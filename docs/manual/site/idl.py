"""Reads the type library's source: classes, methods, properties and enumerations with their help strings."""
import re
from dataclasses import dataclass, field

STRING = r'"((?:[^"\\]|\\.)*)"'
HELP = re.compile(r'helpstring\(' + STRING + r'\)')


class NotUnderstood(Exception):
    """The source has something that this reader does not know."""


@dataclass
class Argument:
    name: str
    type: str
    direction: str  # "in", "in, out" or "out, retval"

    @property
    def is_output(self):
        return 'out' in self.direction


@dataclass
class Method:
    name: str
    id: int
    about: str
    arguments: list


@dataclass
class Property:
    name: str
    id: int
    about: str
    type: str
    access: list = field(default_factory=list)


@dataclass
class Class:
    name: str
    clsid: str
    interface: str
    iid: str
    about: str
    dual: bool
    methods: list
    properties: list


@dataclass
class Enumerator:
    name: str
    value: int
    about: str


@dataclass
class Enumeration:
    name: str
    about: str
    members: list


@dataclass
class Library:
    name: str
    version: str
    classes: list
    enumerations: list


def help_of(attributes, what):
    found = HELP.search(attributes)
    if not found:
        raise NotUnderstood(f'{what} has no help string')
    return found.group(1)


def read_enumerations(text):
    result = []
    for attributes, body, name in re.findall(r'typedef\s*\[([^\]]*)\]\s*enum\s+\w+\s*\{(.*?)\}\s*(\w+)\s*;', text, re.S):
        members = []
        for entry in re.split(r',\s*(?=\[)', body.strip()):
            found = re.fullmatch(r'\[([^\]]*)\]\s*(\w+)\s*=\s*(-?\w+)', entry.strip())
            if not found:
                raise NotUnderstood(f'{name}: {entry.strip()}')
            members.append(Enumerator(found[2], int(found[3], 0), help_of(found[1], found[2])))
        result.append(Enumeration(name, help_of(attributes, name), members))
    if len(result) != len(re.findall(r'\benum\s+\w+\s*\{', text)):
        raise NotUnderstood('an enumeration')
    return result


def read_argument(text):
    found = re.fullmatch(r'\[([^\]]*)\]\s*(.*?)\s*(\w+)', text.strip(), re.S)
    if not found:
        raise NotUnderstood(f'the argument {text}')
    return Argument(found[3], re.sub(r'\s+', '', found[2]), re.sub(r'\s*,\s*', ', ', found[1].strip()))


def read_members(body, interface):
    methods, properties = [], {}
    members = re.findall(r'\[([^\[\]]*)\]\s*HRESULT\s+(\w+)\(((?:[^()]|\([^()]*\))*)\)\s*;', body)
    if len(members) != len(re.findall(r'\bHRESULT\b', body)):
        raise NotUnderstood(f'a member of {interface}')
    for attributes, name, arguments in members:
        about = help_of(attributes, f'{interface}.{name}')
        id = int(re.search(r'id\((\w+)\)', attributes)[1], 0)
        read = [read_argument(a) for a in re.split(r',(?![^\[]*\])', arguments) if a.strip()]
        access = re.search(r'\bprop(get|putref|put)\b', attributes)
        if not access:
            methods.append(Method(name, id, about, read))
            continue
        type = read[-1].type
        if access[1] == 'get':
            type = re.sub(r'\*$', '', type)
        properties.setdefault(name, Property(name, id, about, type)).access.append(access[1])
    return methods, list(properties.values())


def read(path):
    with open(path, encoding='utf-8') as source:
        text = re.sub(r'//[^\n]*', '', source.read())
    library = re.search(r'\bversion\(([\d.]+)\).*?\blibrary\s+(\w+)', text, re.S)
    interfaces = {}
    for attributes, name, body in re.findall(r'\[([^\[\]]*)\]\s*interface\s+(\w+)\s*:\s*\w+\s*\{(.*?)\n  \}', text, re.S):
        iid = re.search(r'uuid\(([-\w]+)\)', attributes)[1]
        interfaces[name] = (iid, help_of(attributes, name), re.search(r'\bdual\b', HELP.sub('', attributes)) is not None,
                            *read_members(body, name))
    classes = []
    for clsid, name, interface in re.findall(
            r'\[\s*uuid\(([-\w]+)\)[^\]]*\]\s*coclass\s+(\w+)\s*\{\s*\[default\]\s*interface\s+(\w+)', text):
        if interface not in interfaces:
            raise NotUnderstood(f'the interface {interface}')
        iid, about, dual, methods, properties = interfaces[interface]
        classes.append(Class(name, clsid, interface, iid, about, dual, methods, properties))
    if not library or not classes or len(classes) != len(re.findall(r'\bcoclass\b', text)):
        raise NotUnderstood('a class')
    return Library(library[2], library[1], classes, read_enumerations(text))
