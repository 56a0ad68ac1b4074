"""Builds the settings catalogs from the settings programs' own sources."""
