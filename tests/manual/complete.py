"""The manual lacks nothing: complete.py FOLDER, which takes a site.

What there is to describe is read here in another way than the manual's own, which once passed over an enumeration. Then
texts are taken away from a copy, and the making of the site has to fail for each and name it.
"""
import os
import re
import shutil
import sys

sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))

from sources import IDL, LANGUAGES, MANUAL, ROOT, text_of  # noqa: E402
from idl import NotUnderstood  # noqa: E402
from make import make  # noqa: E402
from source import Missing  # noqa: E402
from samples import names_ready  # noqa: E402

failures = 0


def check(condition, what):
    global failures
    if not condition:
        failures += 1
        print(f'FAILED: {what}')


def page(folder, language, name):
    try:
        with open(os.path.join(folder, language, f'{name}.html'), encoding='utf-8') as file:
            return file.read()
    except FileNotFoundError:
        return ''


def members_of_interfaces():
    """Pairs of a class and a member, line by line."""
    cls, result = None, set()
    for line in text_of('src', 'module', 'quivocom.idl').split('\n'):
        found = re.match(r'  interface I?(\w+) : ', line)
        if found:
            cls = found[1]
        found = re.match(r'    HRESULT (\w+)\(', line)
        if found:
            result.add((cls, found[1]))
    return result


def check_members(folder):
    members = members_of_interfaces()
    check(len(members) > 100, f'{len(members)} members were found')
    values = re.findall(r'^    \[helpstring\(".*"\)\] (\w+) = ', text_of('src', 'module', 'quivocom.idl'), re.M)
    check(len(values) > 80 and 'Flag_Init_Noldap' in values, f'{len(values)} enumeration values were found')
    for language in LANGUAGES:
        for cls, member in sorted(members):
            described = page(folder, language, f'{cls}.{member}') or f'id="{member}"' in page(folder, language, cls)
            check(described, f'{language}: {cls}.{member} has no page')
        enums = page(folder, language, 'enums')
        for value in values:
            check(f'<tr id="{value}">' in enums, f'{language}: {value} is not on the page of the enumerations')


def sources_of_the_module():
    for folder, _, names in os.walk(os.path.join(ROOT, 'src')):
        for name in names:
            if name.endswith(('.cpp', '.h')):
                yield os.path.relpath(os.path.join(folder, name), ROOT)


# Masks and bases of codes, in the places where they stand.
NO_CODES = {'0x80000000', '0xE0690000'}
# What the windows show in addition to messages: the caption, headings of columns, a filter, a question, and outcomes.
NO_MESSAGES = {'КОРВИС (x64)', 'Результат', 'Подписавшие', 'Время', 'Все файлы (*.*)\\0*.*\\0', 'Файл %s уже существует. Перезаписать?'}


def check_codes():
    codes, names, texts = set(), set(), set()
    for path in sources_of_the_module():
        text = text_of(path)
        codes.update(re.findall(r'\b0x[8E-F][0-9A-F]{7}\b', text))
        code = re.sub(r'//[^\n]*', '', text)
        names.update(re.findall(r'(?<![.\w])(?:CLASS_|DISP_)?E_[A-Z_]+\b|\bS_FALSE\b', code))
        texts.update(found for found in re.findall(r'"((?:[^"\\\n]|\\.)*)"', code) if re.search('[А-Яа-я]', found))
    names = {name for name in names if not name.startswith('E_QUIVO')}
    texts = {text.replace('%ls', '%s') for text in texts - NO_MESSAGES if 'выполнены' not in text and not text.startswith('Подписанный')
             and not text.startswith('При сохранении')}
    check(len(codes) > 8 and len(names) > 8 and len(texts) > 12, f'{len(codes)} codes, {len(names)} names, {len(texts)} texts were found')
    for language in LANGUAGES:
        catalogue = text_of('docs', 'manual', language, 'reference', 'codes.md')
        for code in codes - NO_CODES:
            check(f'\n## {code}' in catalogue, f'{language}: {code} is not in codes.md')
        for name in names:
            check(re.search(rf'^## 0x\w+ {name}$', catalogue, re.M), f'{language}: {name} is not in codes.md')
        for text in texts:
            check(f'"{text}"' in catalogue, f'{language}: "{text}" is not in codes.md')


def check_safety():
    """The methods that the facts call file methods are those that look at the untrusted-data mode."""
    refused = set()
    for path in sources_of_the_module():
        if not path.startswith('src/operations/'):
            continue
        text = text_of(path)
        bodies = re.findall(r'^(?:HRESULT|STDMETHODIMP) ([\w:]+)\((.*?)^}', text, re.M | re.S)
        helpers = [name for name, body in bodies if 'isUntrusted()' in body and '::' not in name]
        for name, body in bodies:
            if '::' in name and any(word in body for word in helpers + ['isUntrusted()']):
                refused.add(name.split('::')[1])
    stated = set(re.findall(r'^## (\w+)\n(?:(?!##|```).*\n)*?safety: file$', text_of('docs', 'manual', 'reference', 'QUIVO.md'), re.M))
    check(len(refused) > 8, f'{len(refused)} methods with files were found')
    check(refused == stated, f'safety: {sorted(refused ^ stated)}')


def check_ready():
    """Every name that the lines find ready is explained."""
    code = ''.join(re.findall(r'^```\w+\n(.*?)^```', ''.join(text_of('docs', 'manual', 'reference', f'{cls}.md') for cls in ('QUIVO', 'pkiobj')),
                              re.M | re.S))
    used = {name for name in names_ready() if re.search(rf'\b{name}\b', code)}
    check(len(used) > 15, f'{len(used)} names are ready')
    for language in LANGUAGES:
        kinds = text_of('docs', 'manual', language, 'reference', 'kinds.md')
        explained = set(re.findall(r'^- `(\w+)`: ', kinds, re.M))
        check(used == explained, f'{language}: names in scripts: {sorted(used ^ explained)}')


# What is taken away: a file, a pattern in it, what stays there, and what the failure names.
REMOVALS = [
    ('ru/reference/QUIVO.md', r'^## SignMem\n.*?(?=^## )', '', 'SignMem'),
    ('en/reference/QUIVO.md', r'^- `sign_in`: [^\n]*\n', '', 'sign_in'),
    ('en/reference/QUIVO.md', r'^Result: [^\n]*\n', '', 'Result'),
    ('ru/reference/QUIVO.md', r'^Failure: [^\n]*\n', '', 'Failure'),
    ('en/reference/QUIVO.md', r'^Note: [^\n]*\n', '', 'Note'),
    ('en/reference/CertId.md', r'^## type\n.*?(?=^## )', '', 'type'),
    ('ru/reference/enums.md', r'^- `Flag_Init_Noldap`: [^\n]*\n', '', 'Flag_Init_Noldap'),
    ('en/reference/enums.md', r'^## Keyusage_t\n.*?(?=^## )', '', 'Keyusage_t'),
    ('en/reference/codes.md', r'^## 0xE0690057 .*?(?=^## )', '', '0xE0690057'),
    ('ru/reference/codes.md', r'^Cure: [^\n]*\n', '', '0x00000001'),
    ('ru/reference/kinds.md', r'^## bytes\n.*?(?=^## )', '', 'bytes'),
    ('reference/QUIVO.md', r'^```jscript\n.*?^```\n', '', 'jscript'),
    ('reference/QUIVO.md', r'^safety: file$', 'safety: unknown', 'safety'),
    ('reference/pkiobj.md', r'^## FreeRecipCerts\n.*', '', 'FreeRecipCerts'),
    ('ru/reference/StreamCtx.md', None, '', 'StreamCtx.md'),
    ('en/reference/Policy.md', r'\Z', '\n## nothing\n\nNo such property.\n', 'nothing'),
    ('idl', r'^    \[id\(5\), helpstring\("Hash of bytes"\)\]$', '    [id(5)]', 'HashMem'),
    ('idl', r'^  typedef \[public, helpstring\("[^"]*"\)\] enum', '  typedef [public] enum', 'Init_Flag_t'),
    ('idl', r'^    \[id\(6\), helpstring', '    [id(99), helpstring("New")] HRESULT Added();\n    [id(6), helpstring', 'Added'),
    ('idl', r'(Flag_Import_Update = 16)$', r'\1,\n    [helpstring("New")] Flag_Import_Added = 32', 'Flag_Import_Added'),
]


def check_removals(folder):
    copy = os.path.join(folder, 'copy')
    for file, pattern, replacement, named in REMOVALS:
        shutil.rmtree(copy, ignore_errors=True)
        shutil.copytree(MANUAL, os.path.join(copy, 'manual'))
        shutil.copyfile(IDL, os.path.join(copy, 'idl'))
        path = os.path.join(copy, 'idl') if file == 'idl' else os.path.join(copy, 'manual', file)
        if pattern is None:
            os.remove(path)
        else:
            with open(path, encoding='utf-8') as changed:
                text = changed.read()
            text, count = re.subn(pattern, replacement, text, count=1, flags=re.M | re.S)
            check(count == 1, f'{file}: {pattern} is not there')
            with open(path, 'w', encoding='utf-8') as changed:
                changed.write(text)
        try:
            make(os.path.join(copy, 'site'), os.path.join(copy, 'idl'), os.path.join(copy, 'manual'))
            check(False, f'{file} without {pattern} makes a site')
        except (Missing, NotUnderstood) as error:
            check(named in str(error), f'{file} without {pattern}: {error}')


def main():
    folder = sys.argv[1]
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    make(folder, IDL, MANUAL)
    check_members(folder)
    check_codes()
    check_safety()
    check_ready()
    check_removals(folder)
    print(f'{failures} failures')
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
