"""Checks a site of the manual without a browser: links.py FOLDER

Every link leads to a page and a place that exist, nothing comes from elsewhere, every page has its twin, and the index of the
search names pages and places that exist.
"""
import json
import os
import re
import sys
from html.parser import HTMLParser
from urllib.parse import unquote

LANGUAGES = ('ru', 'en')


class Page(HTMLParser):
    """What a page refers to, and the places in it."""

    def __init__(self, path):
        super().__init__()
        self.links, self.resources, self.places, self.words = [], [], [''], []
        with open(path, encoding='utf-8') as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attributes):
        given = dict(attributes)
        if 'id' in given:
            self.places.append(given['id'])
        if tag == 'a':
            self.links.append(given.get('href', ''))
        for name in ('src', 'srcset', 'data', 'action') + (('href',) if tag == 'link' else ()):
            if name in given:
                self.resources.append(given[name])

    def handle_data(self, data):
        self.words.append(data)


def main():
    folder = os.path.realpath(sys.argv[1])
    pages = {}
    for language in LANGUAGES:
        for name in os.listdir(os.path.join(folder, language)):
            if name.endswith('.html'):
                pages[f'{language}/{name}'] = Page(os.path.join(folder, language, name))
    pages['index.html'] = Page(os.path.join(folder, 'index.html'))
    bad = []
    count = 0
    for path, page in pages.items():
        for link in page.links:
            if re.match(r'https?:|mailto:', link):
                continue
            count += 1
            target, _, place = link.partition('#')
            target = os.path.normpath(os.path.join(os.path.dirname(path), target)) if target else path
            if target not in pages:
                bad.append(f'{path}: {link}: no such page')
            elif unquote(place) not in pages[target].places:
                bad.append(f'{path}: {link}: no such place')
        for resource in page.resources:
            if ':' in resource or not os.path.isfile(os.path.join(folder, os.path.dirname(path), resource)):
                bad.append(f'{path}: {resource}: not a file of the site')
        if len(page.places) != len(set(page.places)):
            bad.append(f'{path}: two places of one name')
        # Markdown that was not understood stays as it is.
        if re.search(r'(?<!\w)\*\*|\]\(|^#+ |```', ' '.join(page.words), re.M):
            bad.append(f'{path}: Markdown is left')
        language, _, name = path.partition('/')
        if name and f'{"en" if language == "ru" else "ru"}/{name}' not in pages:
            bad.append(f'{path}: no twin')
    for language in LANGUAGES:
        with open(os.path.join(folder, language, 'search-index.js'), encoding='utf-8') as file:
            entries = json.loads(re.fullmatch(r'var searchIndex = (\[.*\]);\n', file.read(), re.S)[1])
        found = {title for title, _, _ in entries}
        for name in ('QUIVO.SignMem', 'CertId.type', 'Flag_Init_Noldap'):
            if name not in found:
                bad.append(f'{language}: the search does not know {name}')
        for title, target, words in entries:
            path, _, place = target.partition('#')
            if f'{language}/{path}' not in pages or place not in pages[f'{language}/{path}'].places or not words.strip():
                bad.append(f'{language}: the search leads from {title} to {target}')
    if count < 1000:
        bad.append(f'only {count} links were found')
    print('\n'.join(bad + [f'{len(pages)} pages, {count} links, {len(bad)} failures']))
    return 1 if bad else 0


if __name__ == '__main__':
    sys.exit(main())
