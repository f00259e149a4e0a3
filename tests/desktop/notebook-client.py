#!/usr/bin/python3
# A GTK window with a notebook of three tabs, for the tests of reading and choosing tabs over the
# accessibility bus. Prints the tab shown whenever it changes: "page NAME".
import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gtk  # noqa: E402

title = sys.argv[1] if len(sys.argv) > 1 else "tabs"
window = Gtk.Window(title=title)
window.set_default_size(500, 400)
notebook = Gtk.Notebook()
for name in ("Alpha", "Beta", "Gamma"):
    notebook.append_page(Gtk.Label(label=f"The {name} page"), Gtk.Label(label=name))


def switched(book, page, number):
    print("page", book.get_tab_label_text(page), flush=True)


notebook.connect("switch-page", switched)
window.add(notebook)
window.connect("destroy", Gtk.main_quit)
window.show_all()
Gtk.main()
