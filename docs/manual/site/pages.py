"""Makes the pages of one language."""
import html
import os
import re

import markdown
from markdown.extensions.toc import slugify_unicode

from source import Missing
from texts import codes_of
from words import WORDS

EXTENSIONS = ['tables', 'fenced_code', 'sane_lists', 'toc']
SETTINGS = {'toc': {'slugify': slugify_unicode}}


def plain(text):
    """The words of a page or a part of it, for the search."""
    return ' '.join(html.unescape(re.sub(r'<[^>]+>', ' ', text)).split())


class Pages:
    """The pages of one language: write() makes them all, and the index of the search."""

    def __init__(self, library, texts, facts, folder):
        self.library, self.texts, self.facts, self.folder = library, texts, facts, folder
        self.words = WORDS[texts.language]
        self.other = 'ru' if texts.language == 'en' else 'en'
        self.places = self.places_of_names()
        self.search = []

    # What a name in the texts refers to.

    def places_of_names(self):
        places = {}
        for cls in self.library.classes:
            for method in cls.methods:
                places[f'{cls.name}.{method.name}'] = f'{cls.name}.{method.name}.html'
                places.setdefault(method.name, f'{cls.name}.{method.name}.html')
            for member in cls.properties:
                places[f'{cls.name}.{member.name}'] = f'{cls.name}.html#{member.name}'
        for enumeration in self.library.enumerations:
            places[enumeration.name] = f'enums.html#{enumeration.name}'
            for member in enumeration.members:
                places[member.name] = f'enums.html#{member.name}'
        for title in self.texts.codes[2]:
            if title.startswith('0x'):
                places[title.split()[0]] = f'codes.html#{title.split()[0]}'
        for cls in self.library.classes:
            places[cls.name] = f'{cls.name}.html'
            places[cls.interface] = f'{cls.name}.html'
        return places

    def place_of(self, name, cls):
        if cls is not None and f'{cls.name}.{name}' in self.places:
            return self.places[f'{cls.name}.{name}']
        return self.places.get(name)

    def linked(self, text, cls=None):
        """HTML in which every name in code type that the reference knows is a link."""
        def link(found):
            place = self.place_of(html.unescape(found[1]), cls)
            return f'<a href="{place}">{found[0]}</a>' if place else found[0]
        return self.with_codes(re.sub(r'(?<!">)<code>([\w.*]+)</code>', link, text))

    def with_codes(self, text):
        """HTML in which the codes that stand in plain text are links too."""
        result, quoted = [], 0
        for part in re.split(r'(<[^>]+>)', text):
            if part.startswith('<'):
                quoted += bool(re.match(r'<(a|code|pre|h\d)\b', part)) - bool(re.match(r'</(a|code|pre|h\d)>', part))
            elif not quoted:
                part = re.sub(r'\b0x\w{8}\b', lambda found: self.code_link(found[0]), part)
            result.append(part)
        return ''.join(result)

    def code_link(self, code):
        place = self.places.get(code)
        return f'<a href="{place}">{code}</a>' if place else code

    def rendered(self, text, cls=None):
        return self.linked(markdown.markdown(text, extensions=EXTENSIONS, extension_configs=SETTINGS), cls)

    def inline(self, text, cls=None):
        """A text of one paragraph, without the paragraph."""
        return re.sub(r'^<p>(.*)</p>$', r'\1', self.rendered(text, cls), flags=re.S)

    def link(self, name, cls=None):
        place = self.place_of(name, cls)
        if not place:
            raise Missing(f'{self.texts.language}: nothing is called {name}')
        return f'<a href="{place}"><code>{html.escape(name)}</code></a>'

    def type_link(self, type):
        found = re.fullmatch(r'(\w+)(\**)', type)
        place = self.places.get(found[1])
        shown = html.escape(type)
        return f'<a href="{place}"><code>{shown}</code></a>' if place else f'<code>{shown}</code>'

    # One page.

    def write_page(self, name, title, body, kind):
        texts, words = self.texts, self.words
        twin = f'../{self.other}/{name}.html'
        page = f'''<!DOCTYPE html>
<html lang="{texts.language}">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{html.escape(title)} – {words['manual']}</title>
<link rel="stylesheet" href="../style.css">
</head>
<body>
<header>
<a class="home" href="index.html">{words['manual']}</a>
<form role="search" onsubmit="return false"><input id="site-search" type="search" placeholder="{words['search']}"
 aria-label="{words['search']}" data-nothing="{words['nothing found']}" autocomplete="off"></form>
<a class="twin" href="{twin}" hreflang="{self.other}">{WORDS[self.other]['language']}</a>
</header>
<ol id="site-found" hidden></ol>
<div class="columns">
<nav>{self.navigation(name)}</nav>
<main class="{kind}">
{body}
</main>
</div>
<script src="search-index.js"></script>
<script src="../search.js"></script>
</body>
</html>
'''
        with open(os.path.join(self.folder, f'{name}.html'), 'w', encoding='utf-8') as out:
            out.write(page)
        self.search.append((title, f'{name}.html', plain(body)))

    def navigation(self, current):
        words = self.words

        def entry(name, title):
            mark = ' aria-current="page"' if name == current else ''
            return f'<li><a href="{name}.html"{mark}>{html.escape(title)}</a></li>'
        parts = []
        if self.texts.chapters:
            parts.append(f'<h2>{words["chapters"]}</h2><ul>')
            parts += [entry(name, chapter_title(text)) for name, text in self.texts.chapters]
            parts.append('</ul>')
        parts.append(f'<h2>{words["classes"]}</h2><ul>')
        for cls in self.library.classes:
            parts.append(entry(cls.name, cls.name))
            if cls.methods and current.split('.')[0] == cls.name:
                parts.append('<li><ul>')
                parts += [entry(f'{cls.name}.{method.name}', method.name) for method in cls.methods]
                parts.append('</ul></li>')
        parts.append(f'</ul><h2>{words["reference"]}</h2><ul>')
        parts += [entry('enums', words['enumerations']), entry('codes', words['codes']), '</ul>']
        return '\n'.join(parts)

    # The pages.

    def write(self):
        os.makedirs(self.folder, exist_ok=True)
        self.write_index()
        for name, text in self.texts.chapters:
            self.write_page(name, chapter_title(text), self.chapter(text), 'chapter')
        for cls in self.library.classes:
            self.write_class(cls)
            for method in cls.methods:
                self.write_method(cls, method)
        self.write_enumerations()
        self.write_codes()
        self.write_search()

    def chapter(self, text):
        """A chapter in HTML; links to other files of the manual become links to their pages."""
        def link(found):
            path, anchor = found[1], found[2]
            name = os.path.basename(path)[:-3]
            if '/reference/' in path and anchor:
                place = self.place_of_anchor(name, anchor)
            else:
                place = f'{name}.html' + (f'#{anchor}' if anchor else '')
            return f'href="{place}"'
        return re.sub(r'href="(?!\w+:)([^"#]*\.md)(?:#([^"]*))?"', link, self.rendered(text))

    def place_of_anchor(self, file, anchor):
        """Where a heading of a file of the reference has gone. Small letters do, as in Markdown's anchors."""
        if file in ('enums', 'codes'):
            for place in self.places.values():
                if place.lower() == f'{file}.html#{anchor}'.lower():
                    return place
        for name, place in self.places.items():
            if name.lower() == f'{file}.{anchor}'.lower():
                return place
        raise Missing(f'{self.texts.language}: a chapter refers to {file}#{anchor}')

    def write_index(self):
        words, rows = self.words, []
        for cls in self.library.classes:
            introduction = self.texts.classes[cls.name][0].split('\n\n')[0]
            rows.append(f'<dt>{self.link(cls.name)}</dt><dd>{self.inline(introduction, cls)}</dd>')
        chapters = ''.join(f'<li><a href="{name}.html">{html.escape(chapter_title(text))}</a></li>'
                           for name, text in self.texts.chapters)
        chapters = f'<h2>{words["chapters"]}</h2><ol>{chapters}</ol>' if chapters else ''
        self.write_page('index', words['contents'], f'''<h1>{words['manual']}</h1>
<p>{words['version']} <code>{self.library.name}</code> {self.library.version}.</p>
{chapters}
<h2>{words['classes']}</h2>
<dl>{''.join(rows)}</dl>
<h2>{words['reference']}</h2>
<ul><li><a href="enums.html">{words['enumerations']}</a></li><li><a href="codes.html">{words['codes']}</a></li></ul>''', 'index')

    def write_class(self, cls):
        words = self.words
        introduction, sections = self.texts.classes[cls.name]
        body = [f'<h1>{words["class"]} <code>{cls.name}</code></h1>', self.rendered(introduction, cls),
                f'<p class="facts">ProgID <code>TAVL.{cls.name}</code>, CLSID <code>{{{cls.clsid}}}</code>, {words["interface"].lower()} '
                f'<code>{cls.interface}</code> <code>{{{cls.iid}}}</code> ({words["dual" if cls.dual else "not dual"]}).</p>']
        if cls.methods:
            body.append(f'<h2>{words["methods"]}</h2><dl>')
            for method in cls.methods:
                first = sections[method.name].prose.split('\n\n')[0]
                body.append(f'<dt>{self.link(method.name, cls)}</dt><dd>{self.inline(first, cls)}</dd>')
            body.append('</dl>')
        if cls.properties:
            body.append(f'<h2>{words["properties"]}</h2>')
        for member in cls.properties:
            access = ', '.join(words[how] for how in member.access)
            body.append(f'<h3 id="{member.name}"><code>{member.name}</code></h3>'
                        f'<p class="facts">{self.type_link(member.type)}, {access}, DISPID {shown_id(member.id)}.</p>'
                        f'{self.rendered(sections[member.name].prose, cls)}'
                        f'<p class="forms">{self.inline(self.texts.kinds[property_kind(cls, member)], cls)}</p>')
            self.search.append((f'{cls.name}.{member.name}', f'{cls.name}.html#{member.name}',
                                plain(self.rendered(sections[member.name].prose))))
        body.append(self.common('memory'))
        self.write_page(cls.name, cls.name, '\n'.join(body), 'class')

    def common(self, *names):
        return ''.join(f'<h3>{self.words[name]}</h3>{self.rendered(self.texts.kinds[name])}' for name in names)

    def write_method(self, cls, method):
        words = self.words
        section, facts = self.texts.classes[cls.name][1][method.name], self.facts[cls.name][method.name]
        arguments = []
        for argument in method.arguments:
            forms = '' if facts.kinds[argument.name] == 'other' else \
                f'<p class="forms">{self.inline(self.texts.kind(facts.kinds[argument.name]), cls)}</p>'
            arguments.append(f'<dt><code>{argument.name}</code> <span>{self.type_link(argument.type)}, '
                             f'{words[argument.direction]}</span></dt><dd>'
                             f'{self.rendered(section.items[argument.name], cls)}{forms}</dd>')
        codes = ''.join(f'<tr><td>{self.link(code)}</td><td>{self.inline(self.texts.code(code).prose, cls)}</td></tr>'
                        for code in codes_of(facts))
        samples = ''.join(f'<pre class="{language}"><code>{html.escape(code)}</code></pre>'
                          for language, code in facts.samples.items())
        code = '\n'.join(facts.samples.values())
        ready = '; '.join(self.inline(f'`{name}`: {text}') for name, text in self.texts.ready.items() if re.search(rf'\b{name}\b', code))
        see = ', '.join(self.link(name, cls) for name in facts.see)
        note = f'<h2>{words["Note"]}</h2>{self.rendered(section.fields["Note"], cls)}' if 'Note' in section.fields else ''
        signature = ', '.join(argument.name for argument in method.arguments)
        body = f'''<p class="up">{self.link(cls.name)}</p>
<h1>{words['method']} <code>{method.name}</code></h1>
<p class="signature"><code>{method.name}({signature})</code> <span>DISPID {shown_id(method.id)}</span></p>
{self.rendered(section.prose, cls)}
<h2>{words['arguments']}</h2>
{f'<dl class="arguments">{"".join(arguments)}</dl>' if arguments else f'<p>{words["none"]}</p>'}
<h2>{words['Result']}</h2>
{self.rendered(section.fields['Result'], cls)}
<h2>{words['Failure']}</h2>
{self.rendered(section.fields['Failure'], cls)}
<table><thead><tr><th>{words['code']}</th><th>{words['meaning']}</th></tr></thead><tbody>{codes}</tbody></table>
{note}
<h2>{words['in scripts']}</h2>
{samples}
<p class="forms">{ready}</p>
<h2>{words['see']}</h2>
<p>{see}</p>
<section class="common">
<h3>{words['safety']}</h3>
{self.rendered(self.texts.kinds[f'safety-{facts.safety}'], cls)}
{self.common('threads', 'memory')}
</section>'''
        self.write_page(f'{cls.name}.{method.name}', f'{cls.name}.{method.name}', body, 'method')

    def write_enumerations(self):
        words = self.words
        title, introduction, sections = self.texts.enumerations
        body = [f'<h1>{html.escape(title)}</h1>', self.rendered(introduction)]
        for enumeration in self.library.enumerations:
            section, cls = sections[enumeration.name], self.user_of(enumeration)
            body.append(f'<h2 id="{enumeration.name}"><code>{enumeration.name}</code></h2>{self.rendered(section.prose, cls)}<table>'
                        f'<thead><tr><th>{words["name"]}</th><th>{words["value"]}</th><th>{words["meaning"]}</th></tr></thead><tbody>')
            for member in enumeration.members:
                text = section.items[member.name]
                body.append(f'<tr id="{member.name}"><td><code>{member.name}</code></td><td>{shown_value(member.value)}</td>'
                            f'<td>{self.inline(text, cls)}</td></tr>')
                self.search.append((member.name, f'enums.html#{member.name}', plain(self.inline(text))))
            body.append('</tbody></table>')
        self.write_page('enums', title, '\n'.join(body), 'enums')

    def user_of(self, enumeration):
        """The class whose properties the texts of an enumeration speak of."""
        users = [cls for cls in self.library.classes if any(p.type == enumeration.name for p in cls.properties)]
        return next((cls for cls in users if cls.name == 'Certificate'), users[0] if users else None)

    def write_codes(self):
        title, introduction, sections = self.texts.codes
        body = [f'<h1>{html.escape(title)}</h1>', self.rendered(introduction)]
        rows = ''.join(f'<tr><td><a href="#{anchor_of(name)}">{html.escape(name)}</a></td><td>{self.inline(section.prose)}</td></tr>'
                       for name, section in sections.items())
        body.append(f'<table><tbody>{rows}</tbody></table>')
        for name, section in sections.items():
            anchor = anchor_of(name)
            body.append(f'<h2 id="{anchor}">{html.escape(name)}</h2>{self.rendered(section.prose)}')
            for field in ('Text', 'Cause', 'Cure'):
                if field in section.fields:
                    body.append(f'<p><b>{self.words[field]}:</b> {self.inline(section.fields[field])}</p>')
            self.search.append((name, f'codes.html#{anchor}', plain(self.rendered(section.prose + '\n\n' + section.fields['Cause']))))
        self.write_page('codes', title, '\n'.join(body), 'codes')

    def write_search(self):
        def text(value):
            escaped = value.replace('\\', '\\\\').replace('"', '\\"').replace('<', '\\u003c').replace('\n', ' ')
            return f'"{escaped}"'
        with open(os.path.join(self.folder, 'search-index.js'), 'w', encoding='utf-8') as out:
            out.write('var searchIndex = [\n')
            out.write(',\n'.join(f'[{text(title)},{text(place)},{text(words)}]' for title, place, words in self.search))
            out.write('\n];\n')


def chapter_title(text):
    return re.match(r'# +(.+)', text)[1].strip().replace('`', '')


def anchor_of(title):
    """The place of a code or a message on the page of the codes."""
    return title.split()[0] if title.startswith('0x') else slugify_unicode(title, '-')


def property_kind(cls, member):
    """The kind of a property, by its type and, for a VARIANT, by its help string."""
    if member.type == 'BSTR':
        return 'property-string'
    if member.type == 'DATE':
        return 'property-time'
    if member.type.endswith('*'):
        return 'property-object'
    if member.type != 'VARIANT':
        return 'property-number'
    for words, kind in (('byte array', 'property-bytes'), ('array of strings', 'property-strings'), ('objects', 'property-objects')):
        if words in member.about:
            return kind
    raise Missing(f'{cls.name}.{member.name}: of what kind is it?')


def shown_id(id):
    return str(id) if id < 0x10000 else f'0x{id:X}'


def shown_value(value):
    """A value as a script writes it, 32 bits with a sign, and in hexadecimal."""
    signed = value - (1 << 32) if value >= 1 << 31 else value
    return f'{signed} (0x{value & 0xFFFFFFFF:X})' if value > 9 or value < 0 else str(value)
