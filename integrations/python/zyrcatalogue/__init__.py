"""Whole catalogues."""
