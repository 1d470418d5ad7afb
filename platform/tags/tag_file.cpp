#include "platform/tags/tag_file.h"

Tag readTag(const Text&) { return {}; }

Text writeTag(const Text&, const Tag&) { return "This file's tag cannot be written."; }
