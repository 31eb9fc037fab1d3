"""Archives of attributed strings, as the platform writes them and as damage leaves them; what a
reader must make of them stands in NSAttributedStringTest.cpp."""
import struct

from keyed_archive import Float32, KeyedArchive

TEXT = ["NSAttributedString", "NSObject"]
FONT = ["NSFont", "NSObject"]


def whole():
    """A text storage in two styles, one of them twice."""
    a = KeyedArchive()
    plain = {"NSFont": a.font("Helvetica-Bold", 18.0), "NSColor": a.color((1, 0, 0)),
             "NSParagraphStyle": a.paragraph_style(2), "NSStrokeWidth": Float32(-3.0)}
    other = {"NSFont": a.font("Menlo-Regular", 9.5), "NSUnderline": 9, "NSKern": 1.5,
             "NSWritingDirection": a.array([a.add(3), a.add(7), a.add(0)])}
    root = a.attributed_string("0123456789", [(2, plain), (5, other), (3, plain)], "NSTextStorage")
    return a.to_bytes(root=root)


def hello_world():
    """Two runs, as in the description of the format."""
    a = KeyedArchive()
    plain, bold = a.font("Helvetica", 12), a.font("Helvetica-Bold", 12)
    return a.to_bytes(root=a.attributed_string("Hello, world", [
        (7, {"NSFont": plain}), (5, {"NSFont": bold, "NSUnderline": 1, "NSColor": a.color((1, 0, 0))})]))


def recorded_runs():
    """The run table of a file met in the wild."""
    a = KeyedArchive()
    styles = [a.dictionary({"NSKern": float(i)}) for i in range(4)]
    root = a.obj(TEXT, {
        "NSString": a.add("0123456789"), "NSAttributes": a.array(styles),
        "NSAttributeInfo": a.mutable_data(bytes.fromhex("010001010402020101030100"))})
    return a.to_bytes(root=root)


def one_style(text="abc", **fields):
    a = KeyedArchive()
    record = {"NSString": a.mutable_string(text), "NSAttributes": a.dictionary({"NSKern": 7})}
    record.update(fields)
    return a.to_bytes(root=a.obj(TEXT, record))


def runs(table, text="abcdef", as_object=True):
    a = KeyedArchive()
    styles = a.array([a.dictionary({"NSKern": 10}), a.dictionary({"NSKern": 11})])
    info = a.data(table) if as_object else table
    root = a.obj(TEXT, {"NSString": a.add(text), "NSAttributes": styles, "NSAttributeInfo": info})
    return a.to_bytes(root=root)


def without_table():
    a = KeyedArchive()
    styles = a.array([a.dictionary({"NSKern": 10}), a.dictionary({"NSKern": 11})])
    return a.to_bytes(root=a.obj(TEXT, {"NSString": a.add("abc"), "NSAttributes": styles}))


def odd_values():
    """Attributes of wrong kinds beside good ones."""
    a = KeyedArchive()
    unknown = a.obj(["NSCursor", "NSObject"], {"NSHotSpot": 3})
    root = a.attributed_string("x", [(1, {
        "NSFont": a.add("not a font"), "NSColor": 5, "NSCursor": unknown, "NSKern": float("nan"),
        "NSObliqueness": a.add("0.3"), "NSSuperScript": 1, "NSParagraphStyle": unknown,
        "NSUnderline": True, "NSBaselineOffset": Float32(2.5)})])
    return a.to_bytes(root=root)


def unknown_attributes():
    """Runs with attributes of classes that are not known, one of them also outside the text."""
    a = KeyedArchive()
    cell = a.obj(["SomeAttachment", "NSObject"], {"NSCell": a.obj(["SomeCell", "NSObject"], {})})
    note = a.obj(["SomeNote", "NSObject"], {})
    root = a.attributed_string("abcdef", [
        (2, {"NSKern": 1, "NSAttachment": cell}),
        (3, {"SomeNote": note, "NSKern": 2, "NSPresentationIntent": a.array([note, cell])}),
        (1, {"NSKern": 3})], "NSTextStorage")
    a.top = {"root": root, "note": note, "cells": a.array([cell]),
             "other": a.obj(["SomeOther", "NSObject"], {})}
    return a.to_bytes()


def concrete_classes():
    """Texts under the names of the classes that implement them."""
    a = KeyedArchive()
    record = {"NSString": a.mutable_string("abc"), "NSAttributes": a.dictionary({"NSKern": 7})}
    for name in "AttributedString", "MutableAttributedString", "TextStorage":
        a.top["NS" + name] = a.obj(["NSConcrete" + name, "NSObject"], record)
    return a.to_bytes()


def contains_itself():
    a = KeyedArchive()
    root = a.reserve()
    a.fill(root, TEXT, {"NSString": a.add("x"),
                        "NSAttributes": a.dictionary({"NSLink": root, "NSKern": 3})})
    return a.to_bytes(root=root)


def fonts():
    a = KeyedArchive()
    a.top = {
        "plain": a.font("Georgia-Italic", 14.5),
        "zero": a.font("Georgia", 0.0),
        "negative": a.font("Georgia", -5.0),
        "nan": a.font("Georgia", float("nan")),
        "huge": a.font("Georgia", 1e9),
        "long name": a.font("x" * 10000, 10.0),
        "system": a.obj(FONT, {"NSSize": 13.0, "NSfFlags": 1044}),
        "bold system": a.obj(FONT, {"NSName": a.add(""), "NSSize": 13.0, "NSfFlags": 2072}),
        "other system": a.font(".SFOther-Regular", 20.0, 1044),
        "other bold system": a.font(".SFOther-Bold", 20.0, 2072),
        "other small bold system": a.font(".SFOther-Bold", 20.0, 3357),
        "other small system": a.font(".SFOther-Regular", 20.0, 3100),
        "other mini system": a.font(".SFOther-Regular", 20.0, 3614),
        "other label": a.font(".SFOther-Regular", 20.0, 2843),
        "other menu": a.font(".SFOther-Regular", 20.0, 4883),
        "other": a.font(".SFOther-Bold", 20.0),
        "plain system": a.font("Menlo-Regular", 20.0, 1044),
        "nothing": a.obj(FONT, {}),
        "old": a.obj(FONT, {"NSFont name": a.add("Times-Roman"), "NSFont pointSize": Float32(20)}),
        "matrix": a.obj(FONT, {"NSName": a.add("Times-Roman"), "NSSize": 10.0, "NSfFlags": 0,
                               "NSMatrix": a.data(struct.pack(">6f", 20, 0, 2.5, 10, 0, 0))}),
        "flat matrix": a.obj(FONT, {"NSName": a.add("Times-Roman"), "NSSize": 10.0,
                                    "NSMatrix": a.data(bytes(24))}),
        "descriptor": a.font_descriptor({"NSFontNameAttribute": a.add("Didot"),
                                         "NSFontSizeAttribute": 30.0}),
    }
    return a.to_bytes()


def paragraph_styles():
    a = KeyedArchive()
    style = ["NSParagraphStyle", "NSObject"]
    tabs = a.array([a.text_tab(90.0, 1), a.text_tab(30.0), a.text_tab(60.0, 3),
                    a.text_tab(75.0, 0, 2), a.add("no tab"), a.text_tab(float("nan"))])
    a.top = {
        "empty": a.obj(style, {}),
        "natural": a.paragraph_style(4),
        "full": a.obj(["NSMutableParagraphStyle"] + style, {
            "NSAlignment": 3, "NSLineBreakMode": 5, "NSWritingDirection": 2, "NSLineSpacing": 1.5,
            "NSParagraphSpacing": 2, "NSParagraphSpacingBefore": 3.25, "NSHeadIndent": 4,
            "NSFirstLineHeadIndent": 5, "NSTailIndent": -6, "NSMinLineHeight": 7,
            "NSMaxLineHeight": 8, "NSLineHeightMultiple": 1.25, "NSDefaultTabInterval": 36,
            "NSHyphenationFactor": Float32(0.5), "NSTabStops": tabs}),
        "no tabs": a.obj(style, {"NSTabStops": a.array([])}),
        "strange": a.obj(style, {"NSAlignment": 77, "NSLineBreakMode": -1, "NSWritingDirection": 9,
                                 "NSLineSpacing": float("nan")}),
    }
    return a.to_bytes()


def samples():
    yield "whole", whole()
    yield "hello_world", hello_world()
    yield "recorded_runs", recorded_runs()
    yield "one_style", one_style()
    yield "empty", one_style("")
    yield "no_text", KeyedArchive().to_bytes(root=None)
    yield "runs_inline", runs(bytes([2, 1, 4, 0]), as_object=False)
    yield "runs_two_bytes", runs(bytes([0xAC, 0x02, 1, 10, 0]), text="a" * 310)
    yield "runs_too_long", runs(bytes([2, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 1, 9, 0]))
    yield "runs_too_short", runs(bytes([2, 0]))
    yield "runs_index_outside", runs(bytes([2, 0, 1, 2, 1, 0xFF, 0x7F, 2, 1]))
    yield "runs_odd", runs(bytes([2, 0, 3]))
    yield "runs_unfinished", runs(bytes([2, 0, 0x83]))
    yield "runs_empty_ones", runs(bytes([0, 1, 3, 0, 0, 0, 3, 1]))
    yield "runs_endless_number", runs(b"\xff" * 1000 + b"\x01\x00")
    yield "runs_without_table", without_table()
    yield "odd_values", odd_values()
    yield "concrete_classes", concrete_classes()
    yield "unknown_attributes", unknown_attributes()
    yield "contains_itself", contains_itself()
    yield "lone_surrogates", one_style("a\udc00b\ud800")
    yield "fonts", fonts()
    yield "paragraph_styles", paragraph_styles()
