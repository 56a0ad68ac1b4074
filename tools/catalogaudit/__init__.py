"""The checks behind tools/catalog-audit."""
