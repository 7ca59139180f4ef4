"""The version, which is the library's."""
VERSION = "1.0.0"
