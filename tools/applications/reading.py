"""What documents hold: lists of runs, each a text with its link and whether it is bold or italic."""

import email
import email.policy
import re
from dataclasses import dataclass
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


def odf(data):
    """The runs of a flat text document, one paragraph after the other."""
    root = ElementTree.fromstring(data)
    styles = _OdfStyles(root)
    runs = []

    def walk(element, link, bold, italic):
        name = _local(element.tag)
        if name == "a":
            link = _attribute(element, "href")
        if name in ("p", "h", "span", "a"):
            style = _attribute(element, "style-name")
            if weight := styles.value(style, "font-weight"):
                bold = weight == "bold"
            if posture := styles.value(style, "font-style"):
                italic = posture == "italic"
        blank = {"s": " ", "tab": "\t", "line-break": "\n"}.get(name, "")
        runs.append(Run(blank + (element.text or ""), link, bold, italic))
        for child in element:
            if _local(child.tag) not in ("annotation", "sequence-decls"):
                walk(child, link, bold, italic)
            runs.append(Run(child.tail or "", link, bold, italic))

    for body in root.iter():
        if _local(body.tag) == "text" and body.tag.startswith("{urn:oasis:names:tc:opendocument:xmlns:office"):
            for paragraph in body:
                if _local(paragraph.tag) in ("p", "h"):
                    walk(paragraph, "", False, False)
    return [run for run in runs if run.text]


def abiword(data):
    """The runs of a document of AbiWord's own format."""
    runs = []

    def walk(element, link, bold, italic):
        name = _local(element.tag)
        if name == "a":
            link = _attribute(element, "href")
        properties = _attribute(element, "props")
        if "font-weight:" in properties:
            bold = "font-weight:bold" in properties
        if "font-style:" in properties:
            italic = "font-style:italic" in properties
        runs.append(Run(element.text or "", link, bold, italic))
        for child in element:
            walk(child, link, bold, italic)
            runs.append(Run(child.tail or "", link, bold, italic))

    for section in ElementTree.fromstring(data).iter():
        if _local(section.tag) == "section":
            walk(section, "", False, False)
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
