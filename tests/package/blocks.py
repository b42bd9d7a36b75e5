"""blocks.py README LANGUAGE [TEXT]: prints the README's one block in a language, or with TEXT its one line that contains it."""

import re
import sys
from pathlib import Path

readme, language, *wanted = sys.argv[1:]
blocks = re.findall(rf"^```{language}\n(.*?)^```$", Path(readme).read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
if wanted:
    blocks = [line for block in blocks for line in block.splitlines(keepends=True) if wanted[0] in line]
if len(blocks) != 1:
    sys.exit(f"{readme} has {len(blocks)} blocks in {language}, not one")
sys.stdout.write(blocks[0])
