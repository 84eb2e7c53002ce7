# SPDX-License-Identifier: BSD-3-Clause
"""Lens defocus for NumPy arrays.

Every point of a picture becomes an image of the aperture, and highlights may weigh more than the rest:

    import glimmerblur
    out = glimmerblur.defocus(picture, shape="polygon", sides=6, radius=30, emphasis=20)

For several pictures of one look, make a Defocus once. Floats stay floats: values above 1 go through.
"""

from ._defocus import Defocus, Error, Rect, Report, defocus, version

__all__ = ["Defocus", "Error", "Rect", "Report", "defocus", "version"]
__version__ = version()
