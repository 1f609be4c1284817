"""Where the sources of the manual are, for its tests."""
import os
import sys

sys.dont_write_bytecode = True
ROOT = os.path.realpath(os.path.join(os.path.dirname(__file__), '..', '..'))
MANUAL = os.path.join(ROOT, 'docs', 'manual')
IDL = os.path.join(ROOT, 'src', 'module', 'quivocom.idl')
LANGUAGES = ('ru', 'en')
sys.path.insert(0, os.path.join(MANUAL, 'site'))


def text_of(*path):
    """The text of a file of the project."""
    with open(os.path.join(ROOT, *path), encoding='utf-8') as file:
        return file.read()
