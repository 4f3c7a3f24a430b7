"""Makes the bindings of a managed library from its description: metadata in, text out."""
