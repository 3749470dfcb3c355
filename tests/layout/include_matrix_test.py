#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
"""Asks include_matrix.py about small trees that each hold one include, however it is written."""

import contextlib
import io
import pathlib
import shutil
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
import include_matrix


class OneInclude(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.root = pathlib.Path(place.name)
        for folder in include_matrix.ALLOWED:
            self.put(f"{folder}/inner/beside.h", "#include <vector>")

    def put(self, path, text):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text + "\n", encoding="utf-8")

    def result(self):
        sys.argv = ["include_matrix.py", str(self.root)]
        with self.assertRaises(SystemExit) as ended, contextlib.redirect_stdout(io.StringIO()):
            include_matrix.main()
        return ended.exception.code

    def test_of_a_source_of_plan(self):
        for wanted, line in (
                (0, '#include <vector>'),
                (0, '#include <QtCore/QList>'),
                (0, '#include "beside.h"'),
                (0, '#include "cache/data_areas.h"'),
                (0, '// #include "protocol/frame_codec.h"'),
                (0, 'int protocol = 1;'),
                (1, '#include "cache/recipe_words.h"'),
                (1, '#include "protocol/frame_codec.h"'),
                (1, '#include <protocol/frame_codec.h>'),
                (1, '  #  include  "protocol/frame_codec.h"  // sly'),
                (1, '#include "../../protocol/frame_codec.h"'),
                (1, '#include "plan/../protocol/frame_codec.h"'),
                (1, '#include <../protocol/frame_codec.h>'),
                (1, '#include "nowhere.h"'),
                (2, '#include MACRO')):
            with self.subTest(line):
                self.put("plan/inner/asks.cpp", line)
                self.assertEqual(self.result(), wanted)

    def test_a_folder_without_sources(self):
        shutil.rmtree(self.root / "cache")
        self.assertEqual(self.result(), 2)


if __name__ == "__main__":
    unittest.main()
