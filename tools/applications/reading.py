"""What documents hold: runs of text, each with its link and whether it is bold or italic."""

import email
import email.policy
import re
from dataclasses import dataclass, replace
from html.parser import HTMLParser
from xml.etree import ElementTree


@dataclass(frozen=True)
class Run:
    text: str
    link: str = ""
    bold: bool = False
    italic: bool = False


def plain(text):
    return [Run(text)]


def _local(name):
    return name.rsplit("}", 1)[-1]


def _attribute(element, name):
    return next((value for key, value in element.attrib.items() if _local(key) == name), "")


class _OdfStyles:
    """Weight and posture of the named styles of a flat document."""

    def __init__(self, root):
        self.styles = {_attribute(e, "name"): e for e in root.iter() if _local(e.tag) == "style"}

    def value(self, name, attribute):
        while (style := self.styles.get(name)) is not None:
            for properties in style:
                if _local(properties.tag) == "text-properties":
                    if value := _attribute(properties, attribute):
                        return value
            name = _attribute(style, "parent-style-name")
        return ""


def _walk(element, styled, run, runs):
    """Appends the runs of an element, which `styled` derives from the run around it."""
    run = styled(element, run)
    runs.append(replace(run, text=run.text + (element.text or "")))
    around = replace(run, text="")
    for child in element:
        _walk(child, styled, around, runs)
        runs.append(replace(around, text=child.tail or ""))


def odf(data):
    """The runs of a flat text document, one paragraph after the other."""
    root = ElementTree.fromstring(data)
    styles = _OdfStyles(root)
    blanks = {"s": " ", "tab": "\t", "line-break": "\n"}

    def styled(element, run):
        name = _local(element.tag)
        count = int(_attribute(element, "c") or 1) if name == "s" else 1
        style = _attribute(element, "style-name")
        return Run(
            blanks.get(name, "") * count,
            _attribute(element, "href") if name == "a" else run.link,
            (styles.value(style, "font-weight") or ("bold" if run.bold else "")) == "bold",
            (styles.value(style, "font-style") or ("italic" if run.italic else "")) == "italic",
        )

    runs = []
    for paragraph in root.iter():
        if _local(paragraph.tag) == "p":
            _walk(paragraph, styled, Run(""), runs)
    return [run for run in runs if run.text]


def abiword(data):
    """The runs of a document of AbiWord's own format."""

    def styled(element, run):
        link = _attribute(element, "href") if _local(element.tag) == "a" else run.link
        style = _attribute(element, "props").replace(" ", "")
        bold = "font-weight:bold" in style or ("font-weight:" not in style and run.bold)
        italic = "font-style:italic" in style or ("font-style:" not in style and run.italic)
        return Run("", link, bold, italic)

    runs = []
    for element in ElementTree.fromstring(data).iter():
        if _local(element.tag) == "p":
            _walk(element, styled, Run(""), runs)
    return [run for run in runs if run.text]


class _Html(HTMLParser):
    def __init__(self):
        super().__init__()
        self.open = []
        self.runs = []

    def handle_starttag(self, tag, attributes):
        if tag not in ("br", "meta", "link", "img", "hr"):
            self.open.append((tag, dict(attributes)))

    def handle_endtag(self, tag):
        for place in reversed(range(len(self.open))):
            if self.open[place][0] == tag:
                del self.open[place]
                break

    def handle_data(self, data):
        names = [tag for tag, _ in self.open]
        if "body" in names:
            links = [attributes.get("href", "") for tag, attributes in self.open if tag == "a"]
            bold = "b" in names or "strong" in names
            self.runs.append(
                Run(data, links[-1] if links else "", bold, "i" in names or "em" in names)
            )


def html(text):
    """The runs of a whole HTML page without style sheets."""
    parser = _Html()
    parser.feed(text)
    parser.close()
    return [run for run in parser.runs if run.text]


def mail_folder(data):
    """The runs of the last message of a folder in mbox format."""
    messages = re.split(rb"(?m)^From .*\n", data)
    message = email.message_from_bytes(messages[-1], policy=email.policy.default)
    body = message.get_body(("html", "plain"))
    if body is None:
        return []
    content = body.get_content()
    return html(content) if body.get_content_type() == "text/html" else plain(content)
