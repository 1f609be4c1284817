"""Joins the scripts of the manual's methods into one script of a language: samples.py vbs|js FACTS... >SCRIPT

Each method's lines stand between a call that makes what they use and one that judges them: no error, every result given,
every file there that they name.
"""
import os
import re
import sys

HERE = os.path.dirname(os.path.realpath(__file__))
sys.path.insert(0, HERE)

import sources  # noqa: E402,F401
import source  # noqa: E402

# Texts that explain a failure, and stay untouched without one.
UNTOUCHED = {'message'}
VBSCRIPT_WORDS = {'set', 'empty', 'nothing', 'true', 'false', 'array', 'createobject', 'left', 'instr', 'chr', 'h', 'hE0680001'}


def files_in(code):
    """The files that the lines name, with single backslashes."""
    return sorted({path.replace('\\\\', '\\') for path in re.findall(r'"(C:\\\\?docs\\[^"]*)"', code)})


def results_in_vbscript(code, ready):
    """The variables that are not made ready before the lines: those that take results."""
    bare = re.sub(r'"[^"]*"|\.\w+|&h\w+', ' ', code)
    names = {name for name in re.findall(r'\b[A-Za-z_]\w*', bare) if name.lower() not in VBSCRIPT_WORDS | ready}
    return sorted(names - UNTOUCHED)


def vbscript(name, facts, ready):
    code = facts.samples['vbscript']
    files = ', '.join(f'"{path}"' for path in files_in(code))
    results = results_in_vbscript(code, ready)
    lines = [f'{result} = Empty' for result in results]
    lines += [f'begin "{name}"', code, f'judge "{facts.raises}", Array({files})']
    lines += [f'given {result}, "{result}"' for result in results]
    return '\n'.join(lines) + '\n\n'


def jscript(method, facts, _):
    code = facts.samples['jscript']
    files = ', '.join('"' + path.replace('\\', '\\\\') + '"' for path in files_in(code))
    names = [result for found in re.findall(r'^var (.*)$', code, re.M) for result in re.findall(r'\b(\w+) = ', found)]
    holders = set(re.findall(r'\b(\w+) = \{\}', code))
    results = ', '.join(f'{name}: {name}' + ('.value' if name in holders else '') for name in names if name not in UNTOUCHED)
    body = '\n'.join('  ' + line for line in code.split('\n'))
    return f'sample("{method}", "{facts.raises}", [{files}], function () {{\n{body}\n  return {{ {results} }};\n}});\n\n'


def names_ready():
    """The names that the lines find ready."""
    prelude = source.read_file(os.path.join(HERE, 'prelude.vbs'))
    return {name for line in re.findall(r'^(?:Dim (.*)|Const (\w+))', prelude, re.M) for name in re.findall(r'\w+', ''.join(line))}


def main():
    language, *paths = sys.argv[1:]
    prelude = source.read_file(os.path.join(HERE, f'prelude.{language}'))
    ready = {name.lower() for name in names_ready()}
    sys.stdout.write(prelude + '\n')
    for path in paths:
        cls = os.path.basename(path)[:-3]
        for method, facts in source.read_facts(path).items():
            write = vbscript if language == 'vbs' else jscript
            sys.stdout.write(write(f'{cls}.{method}', facts, ready))
    sys.stdout.write('finish\n' if language == 'vbs' else 'finish();\n')


if __name__ == '__main__':
    main()
