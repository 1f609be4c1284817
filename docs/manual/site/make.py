"""Makes the site of the manual."""
import os
import shutil

import idl
import pages
import source
import texts

SITE = os.path.dirname(os.path.realpath(__file__))
LANGUAGES = ('ru', 'en')
START = '''<!DOCTYPE html>
<html lang="ru">
<head>
<meta charset="utf-8">
<title>tavlcom</title>
<link rel="stylesheet" href="style.css">
</head>
<body>
<main>
<h1>tavlcom</h1>
<p><a href="ru/index.html" lang="ru">Руководство на русском языке</a></p>
<p><a href="en/index.html" lang="en">Manual in English</a></p>
</main>
</body>
</html>
'''


def make(folder, library_source, manual):
    """Writes the site into a folder. Raises idl.NotUnderstood or source.Missing, and then writes nothing."""
    library = idl.read(library_source)
    facts = texts.read_all_facts(library, manual)
    read = [texts.Texts(library, manual, language) for language in LANGUAGES]
    first, second = read
    source.compare(f'{second.language}: chapters', [name for name, _ in first.chapters], dict(second.chapters))
    for cls in library.classes:
        for name, section in first.classes[cls.name][1].items():
            source.compare(f'{second.language}: {cls.name}.{name}', section.fields, second.classes[cls.name][1][name].fields)
    source.compare(f'{second.language}: codes.md', list(first.codes[2]), second.codes[2])
    for language in read:
        place = os.path.join(folder, language.language)
        # A page of an earlier run must not stay.
        shutil.rmtree(place, ignore_errors=True)
        pages.Pages(library, language, facts, place).write()
    for name in ('style.css', 'search.js'):
        shutil.copyfile(os.path.join(SITE, name), os.path.join(folder, name))
    with open(os.path.join(folder, 'index.html'), 'w', encoding='utf-8') as out:
        out.write(START)
