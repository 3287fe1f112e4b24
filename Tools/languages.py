#!/usr/bin/env python3
"""The catalogues of texts, Resources/languages/zelto_LANGUAGE.ts, and the texts in the sources.

  Tools/languages.py update          adds the keys that are new to each catalogue, takes out those that are gone
  Tools/languages.py check           says what is missing, half translated or shown without a key; fails if anything is
  Tools/languages.py todo LANGUAGE   the keys without a translation, as JSON
  Tools/languages.py fill LANGUAGE FILE   takes translations from such a JSON object: key to text, or to a list of forms

A key is what stands in quotes in a call of zqLocalized or zqKey (for texts in tables), or in a ZQCountedKey. A language gets its
catalogue by the first `fill`. The words of times that are told by their distance have a table of their own in each catalogue; for
`todo` and `fill` its name and a colon stand before them.
"""
import json
import re
import subprocess
import sys
import xml.etree.ElementTree as ET
from pathlib import Path
from xml.sax.saxutils import escape

ROOT = Path(__file__).resolve().parent.parent
FOLDER = ROOT / "Resources" / "languages"
COUNTED = "counted"
TABLE = "HumanizedTimeLocalizable"
FORMS = {"ar": 6, "cs": 3, "ja": 1, "ko": 1, "pl": 3, "ru": 3, "sk": 3, "uk": 3, "zh": 1}  # of a counted text; others have two
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
CALL = re.compile(r"\b(zqLocalized|zqKey)\s*\(|\bzqCounted\s*\(\s*\{|\bZQCountedKey\s*\{")
PLACE = re.compile(r"%(?:(\d)\$)?l?([@dsifu])")
ESCAPES = {"n": "\n", "t": "\t", '"': '"', "\\": "\\", "'": "'"}


def sources():
    names = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "Classes/*.cpp", "Classes/*.h", "Kit/*.cpp",
                            "Kit/*.h", "Models/*.cpp", "Models/*.h"],
                           cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\n")
    return [name for name in names if name and (ROOT / name).exists()]


def without_comments(text):
    """Comments become blanks; what looks like one within a literal stays."""
    kept = re.compile(r'"(?:[^"\\\n]|\\.)*"|//[^\n]*|/\*.*?\*/|\'(?:[^\'\\\n]|\\.)\'', re.S)
    return kept.sub(lambda m: re.sub(r"[^\n]", " ", m[0]) if m[0][0] == "/" else m[0], text)


def unescaped(literal):
    return re.sub(r"\\(.)", lambda m: ESCAPES.get(m[1], m[1]), literal)


def arguments(text, start):
    """Of a call whose bracket was opened just before `start`: its arguments, each as the text of the source."""
    depth, begin, out = 0, start, []
    position = start
    while position < len(text):
        char = text[position]
        if char == '"':
            position = LITERAL.match(text, position).end()
            continue
        if char in "([{":
            depth += 1
        elif char in ")]}":
            if depth == 0:
                return out + [text[begin:position]]
            depth -= 1
        elif char == "," and depth == 0:
            out.append(text[begin:position])
            begin = position + 1
        position += 1
    raise SystemExit("a call without an end")


def literals(argument):
    """The texts of an argument: neighbours are one, those with something between them are several."""
    out, end = [], None
    for match in LITERAL.finditer(argument):
        if end is not None and not argument[end:match.start()].strip():
            out[-1] += unescaped(match[1])
        else:
            out.append(unescaped(match[1]))
        end = match.end()
    return out


def keys():
    """Key to (the files it stands in, English for one or None)."""
    found = {}
    for name in sources():
        text = without_comments((ROOT / name).read_text())
        for call in CALL.finditer(text):
            given = arguments(text, call.end())
            if not call[1]:
                if len(given) == 2 and all(len(literals(each)) == 1 for each in given):
                    found.setdefault((literals(given[1])[0], COUNTED), [set(), literals(given[0])[0]])[0].add(name)
                continue
            for key in literals(given[0]) if given else []:
                found.setdefault((key, ""), [set(), None])[0].add(name)
    return {key: value for key, value in found.items() if key[0].strip()}


def has_words(key):
    """What has none, such as “%@: %@”, stands in the catalogues of those languages only that write its signs in another way."""
    return re.search(r"\w", key[0])


def forms_of(language):
    return FORMS.get(language.split("_")[0], 2)


def messages(path, name):
    return [message for context in ET.parse(path).getroot().iter("context") if context.findtext("name") == name for message in context.iter("message")]


def words_of_table():
    """Key to English."""
    return dict(re.findall(r'\bWord\{"(\w+)", "([^"]*)"\}', (ROOT / "Classes/Sharing/HumanizedTime.cpp").read_text()))


def read_table(language):
    path = FOLDER / f"zelto_{language}.ts"
    return {message.findtext("source"): message.findtext("translation") or "" for message in messages(path, TABLE)} if path.exists() else {}


def read(language):
    """(Key, comment) to its forms; one that is not counted has one."""
    path = FOLDER / f"zelto_{language}.ts"
    if not path.exists():
        return {}
    out = {}
    for message in messages(path, "Zelto"):
        translation = message.find("translation")
        forms = [form.text or "" for form in translation.findall("numerusform")] or [translation.text or ""]
        out[(message.findtext("source"), message.findtext("comment") or "")] = forms
    return out


def write(language, translations, wanted, table):
    lines = ['<?xml version="1.0" encoding="utf-8"?>', "<!DOCTYPE TS>", f'<TS version="2.1" language="{language}">', "<context>", "    <name>Zelto</name>"]
    for key in sorted(key for key in wanted if has_words(key) or key in translations):
        forms = translations.get(key, [""] * (forms_of(language) if key[1] else 1))
        state = "" if all(forms) else ' type="unfinished"'
        lines.append('    <message numerus="yes">' if key[1] else "    <message>")
        lines.append(f"        <source>{escape(key[0])}</source>")
        if key[1]:
            lines.append(f"        <comment>{key[1]}</comment>")
            lines.append(f"        <extracomment>for one: {escape(wanted[key][1])}</extracomment>")
            lines.append(f"        <translation{state}>")
            lines += [f"            <numerusform>{escape(form)}</numerusform>" for form in forms]
            lines.append("        </translation>")
        else:
            lines.append(f"        <translation{state}>{escape(forms[0])}</translation>")
        lines.append("    </message>")
    lines += ["</context>", "<context>", f"    <name>{TABLE}</name>"]
    for key, english in words_of_table().items():
        text = table.get(key, "")
        state = "" if text else ' type="unfinished"'
        lines += ["    <message>", f"        <source>{key}</source>", f"        <extracomment>{escape(english)}</extracomment>",
                  f"        <translation{state}>{escape(text)}</translation>", "    </message>"]
    lines += ["</context>", "</TS>", ""]
    (FOLDER / f"zelto_{language}.ts").write_text("\n".join(lines))


def places(text):
    """What is to be filled in, in the order of the arguments."""
    out, following = [], 0
    for number, kind in PLACE.findall(text.replace("%%", "")):
        if number:
            out.append((int(number), kind))
        else:
            following += 1
            out.append((following, kind))
    return sorted(out)


def faults(key, comment, form):
    """What is wrong with a translation of a key."""
    if not form:
        return ["is not translated"]
    out = []
    known = places(key)
    if comment:  # a form may leave the count out
        if not set(places(form)) <= set(known):
            out.append("has other places to fill in")
    elif places(form) != known:
        out.append("has other places to fill in")
    for edge in (lambda text: text[:1], lambda text: text[-1:]):
        if (edge(key) in " \n") != (edge(form) in " \n"):
            out.append("begins or ends with other blanks")
            break
    accelerators = [len(re.findall(r"&(?=[^\s&])", text.replace("&&", ""))) for text in (key, form)]
    if accelerators[0] != accelerators[1]:
        out.append("has another number of access keys")
    if key.count("\n") != form.count("\n"):
        out.append("has another number of lines")
    if key.endswith("…") != form.endswith("…") and key.endswith("…"):
        out.append("does not end in …")
    return out


# Pieces that are put together to one sentence cannot be put in another order by a translator; lines and whole sentences
# with a blank between them may be.
BETWEEN = r"""(?:u'(?:\\n|\\t| )'|QStringLiteral\("(?:\\n|\\t| )+"\))"""


def glued():
    out = []
    for name in sources():
        text = without_comments((ROOT / name).read_text())
        for match in re.finditer(r"\b(?:zqLocalized|zqCounted)\(", text):
            given = arguments(text, match.end())
            end = match.end() + len(",".join(given)) + 1
            before, after = text[:match.start()].rstrip(), text[end:].lstrip()
            line = text.count("\n", 0, match.start()) + 1
            if after.startswith("+") and not re.match(r"\+=?\s*" + BETWEEN, after):
                out.append(f"{name}:{line}: a text is glued to what follows it; make one key with places of both")
            elif before.endswith(("+", "+=")) and not re.search(BETWEEN + r"\s*\+$", before):
                out.append(f"{name}:{line}: a text is glued to what stands before it; make one key with places of both")
    return out


def with_bare_colons():
    """Some languages have a blank before a colon."""
    out = []
    for name in sources():
        text = without_comments((ROOT / name).read_text()) if name.startswith("Classes/") else ""
        for match in re.finditer(r'QStringLiteral\("(?:%@)?: (?:%@[^"]*)?"\)', text):
            line = text.count("\n", 0, match.start()) + 1
            out.append(f"{name}:{line}: a colon stands between texts; take zqLocalized(\"%@: %@\")")
    return out


# Titles and sentences in a source that looks up what stands elsewhere: from a table of it they reach the person, and only zqKey
# makes them known here. What is said to machines and logs is written as what it is.
JOINED = re.compile(r'"(?:[^"\\\n]|\\.)*"(?:\s*"(?:[^"\\\n]|\\.)*")*')
NO_TEXT = re.compile(r"(?:QStringLiteral|QLatin1String(?:View)?|QByteArrayLiteral|\bqC[A-Z]\w+|\bstatic_assert)\s*\([^;]*$")


def unmarked(wanted):
    known = {key[0] for key in wanted} | {one for _, one in wanted.values() if one}
    out = []
    for name in sources():
        text = without_comments((ROOT / name).read_text())
        if not re.search(r'\bzqLocalized\(\s*[^\s"]', text):
            continue
        for match in JOINED.finditer(text):
            shown = "".join(literals(match[0]))
            if re.match(r"[A-Z“][^\n]* ", shown) and shown not in known and not NO_TEXT.search(text[max(0, match.start() - 300):match.start()]):
                out.append(f"{name}:{text.count(chr(10), 0, match.start()) + 1}: “{shown}” is not marked; write zqKey(\"…\")")
    return out


def languages():
    return sorted(path.stem.split("_", 1)[1] for path in FOLDER.glob("zelto_*.ts"))


def check():
    wanted = keys()
    problems = glued() + with_bare_colons() + unmarked(wanted)
    for language in languages():
        have = read(language)
        problems += [f"{language}: “{key[0]}” is not in the catalogue" for key in sorted(filter(has_words, wanted.keys() - have.keys()))]
        problems += [f"{language}: “{key[0]}” is in no source any more" for key in sorted(have.keys() - wanted.keys())]
        for key in sorted(wanted.keys() & have.keys()):
            if key[1] and len(have[key]) != forms_of(language):
                problems.append(f"{language}: “{key[0]}” needs {forms_of(language)} forms")
            for form in have[key]:
                problems += [f"{language}: “{key[0]}” {fault}: “{form}”" for fault in faults(*key, form)]
        table = read_table(language)
        problems += [f"{language}: “{key}” of {TABLE} is not translated" for key in words_of_table() if not table.get(key)]
    for problem in problems:
        print(problem)
    if problems:
        raise SystemExit(f"{len(problems)} texts are not as they should be; Tools/languages.py update, then translate what is unfinished")
    print(f"{len(wanted)} texts in {', '.join(languages())}")


def update():
    wanted = keys()
    for language in languages():
        write(language, read(language), wanted, read_table(language))


def todo(language):
    have = read(language)
    out = {}
    for key, (_, one) in sorted(keys().items()):
        if has_words(key) and not all(have.get(key, [""])):
            out[key[0] + ("\x01" if key[1] else "")] = [one, key[0]] if key[1] else ""
    table = read_table(language)
    out |= {f"{TABLE}:{key}": "" for key in words_of_table() if not table.get(key)}
    print(json.dumps(out, ensure_ascii=False, indent=0))


def fill(language, path):
    wanted, have, table = keys(), read(language), read_table(language)
    refused = 0
    for text, given in json.loads(Path(path).read_text()).items():
        if text.startswith(TABLE + ":"):
            table[text.split(":")[1]] = given
            continue
        key = (text.rstrip("\x01"), COUNTED if text.endswith("\x01") else "")
        forms = given if isinstance(given, list) else [given]
        wrong = [fault for form in forms for fault in faults(*key, form)] if key in wanted else ["is no key"]
        count = forms_of(language) if key[1] else 1
        if wrong or len(forms) != count:
            print(f"“{key[0]}”: {'; '.join(wrong) or f'needs {count} forms'}: {forms}")
            refused += 1
        else:
            have[key] = forms
    write(language, have, wanted, table)
    if refused:
        raise SystemExit(f"{refused} were not taken")


if __name__ == "__main__":
    commands = {"update": update, "check": check, "todo": todo, "fill": fill}
    if len(sys.argv) < 2 or sys.argv[1] not in commands:
        raise SystemExit(__doc__)
    commands[sys.argv[1]](*sys.argv[2:])
