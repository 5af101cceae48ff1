#!/usr/bin/env python3
"""Draws the icons of the component: editor.ico (the window) and return.ico (the toolbar's button).

Usage: make_icons.py FOLDER
Shapes are drawn at eight times the size and averaged down, so that edges are smooth; 16 and 20 pixels have drawings of their own.
"""
import pathlib
import struct
import sys

SCALE = 8


def canvas(size):
    return [[(0, 0, 0, 0)] * (size * SCALE) for _ in range(size * SCALE)]


def fill(pixels, inside, colour):
    n = len(pixels)
    for y in range(n):
        for x in range(n):
            if inside((x + 0.5) / n, (y + 0.5) / n):
                pixels[y][x] = colour


def averaged(pixels, size):
    rows = []
    for y in range(size):
        row = []
        for x in range(size):
            block = [pixels[y * SCALE + j][x * SCALE + i] for j in range(SCALE) for i in range(SCALE)]
            alpha = sum(p[3] for p in block)
            if alpha == 0:
                row.append((0, 0, 0, 0))
            else:
                row.append(tuple(sum(p[c] * p[3] for p in block) // alpha for c in range(3)) + (alpha // len(block),))
        rows.append(row)
    return rows


def rectangle(left, top, right, bottom):
    return lambda x, y: left <= x < right and top <= y < bottom


def disc(cx, cy, rx, ry):
    return lambda x, y: ((x - cx) / rx) ** 2 + ((y - cy) / ry) ** 2 <= 1


def triangle(a, b, c):
    def side(p, q, x, y):
        return (q[0] - p[0]) * (y - p[1]) - (q[1] - p[1]) * (x - p[0])
    return lambda x, y: len({side(p, q, x, y) >= 0 for p, q in ((a, b), (b, c), (c, a))}) == 1


def editor(size):
    """A sheet of statements with a drum, the database, at its lower right."""
    p = canvas(size)
    fill(p, rectangle(0.08, 0.04, 0.78, 0.92), (120, 130, 145, 255))
    fill(p, rectangle(0.12, 0.08, 0.74, 0.88), (255, 255, 255, 255))
    for i, (end, colour) in enumerate(((0.46, (28, 88, 170)), (0.66, (90, 100, 115)), (0.58, (90, 100, 115)),
                                       (0.40, (28, 88, 170)), (0.52, (90, 100, 115)))):
        top = 0.17 + i * 0.13
        fill(p, rectangle(0.19, top, end, top + 0.06), colour + (255,))
    fill(p, disc(0.70, 0.90, 0.25, 0.09), (20, 110, 90, 255))
    fill(p, rectangle(0.45, 0.60, 0.95, 0.90), (30, 140, 115, 255))
    fill(p, disc(0.70, 0.90, 0.25, 0.08), (30, 140, 115, 255))
    fill(p, disc(0.70, 0.60, 0.25, 0.09), (120, 205, 180, 255))
    return averaged(p, size)


def back(size):
    """An arrow that goes back into a sheet of cells."""
    p = canvas(size)
    fill(p, rectangle(0.04, 0.12, 0.62, 0.90), (110, 120, 135, 255))
    for row in range(3):
        for column in range(2):
            left, top = 0.09 + column * 0.26, 0.17 + row * 0.24
            fill(p, rectangle(left, top, left + 0.22, top + 0.20), (255, 255, 255, 255))
    fill(p, rectangle(0.50, 0.42, 0.97, 0.60), (25, 135, 60, 255))
    fill(p, triangle((0.26, 0.51), (0.58, 0.24), (0.58, 0.78)), (25, 135, 60, 255))
    return averaged(p, size)


def pixels(size):
    """Shapes in whole pixels: in the small sizes an edge that falls between two of them is a blur."""
    p = canvas(size)

    def box(left, top, right, bottom, colour):
        fill(p, rectangle(left / size, top / size, right / size, bottom / size), colour + (255,))
    return p, box


def small_back(size):
    """The same arrow and sheet, for 16 and 20 pixels."""
    p, box = pixels(size)
    frame, white, green = (110, 120, 135), (255, 255, 255), (25, 135, 60)
    columns, rows, middle, tip, head, right = {
        16: (((2, 5), (6, 9)), ((3, 6), (7, 10), (11, 14)), 8, 4, 5, 15),
        20: (((2, 6), (7, 11)), ((3, 7), (8, 12), (13, 17)), 10, 5, 6, 19),
    }[size]
    box(columns[0][0] - 1, rows[0][0] - 1, columns[-1][1] + 1, rows[-1][1] + 1, frame)
    for left, end in columns:
        for top, bottom in rows:
            box(left, top, end, bottom, white)
    # An edge of white parts the arrow from the sheet.
    for step in range(head):
        box(tip + step - 1, middle - step - 1, tip + step + 1, middle + step + 2, white)
    box(tip + head - 1, middle - 2, columns[-1][1], middle + 3, white)
    for step in range(head):
        box(tip + step, middle - step, tip + step + 1, middle + step + 1, green)
    box(tip + head, middle - 1, right, middle + 2, green)
    return averaged(p, size)


def small_editor(size):
    """The same sheet and drum, for 16 and 20 pixels."""
    p, box = pixels(size)
    frame, white, blue, grey = (120, 130, 145), (255, 255, 255), (28, 88, 170), (90, 100, 115)
    dark, drum, light = (20, 110, 90), (30, 140, 115), (120, 205, 180)
    sheet, first, apart, ends, left, top, right, bottom = {
        16: ((1, 0, 12, 15), 2, 2, (7, 10, 9, 6, 8), 8, 8, 15, 16),
        20: ((1, 0, 15, 19), 3, 3, (9, 13, 11, 8, 8), 10, 10, 19, 20),
    }[size]
    box(*sheet, frame)
    box(sheet[0] + 1, sheet[1] + 1, sheet[2] - 1, sheet[3] - 1, white)
    for at, end in enumerate(ends):
        box(3, first + at * apart, end, first + at * apart + 1, grey if 0 < at < 3 or at == 4 else blue)
    box(left - 1, top - 1, sheet[2] - 1, sheet[3] - 1, white)
    box(left, top + 1, right, bottom - 1, drum)
    box(left + 1, bottom - 1, right - 1, bottom, drum)
    box(left + 1, top, right - 1, top + 3, light)
    box(left, top + 1, right, top + 2, light)
    box(left, top + 4, right, top + 5, dark)
    return averaged(p, size)


def image(rows):
    size = len(rows)
    header = struct.pack('<IiiHHIIiiII', 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    body = b''.join(struct.pack('4B', b, g, r, a) for row in reversed(rows) for r, g, b, a in row)
    stride = (size + 31) // 32 * 4
    mask = b''
    for row in reversed(rows):
        bits = bytearray(stride)
        for x, pixel in enumerate(row):
            if pixel[3] < 128:
                bits[x // 8] |= 0x80 >> (x % 8)
        mask += bytes(bits)
    return header + body + mask


def icon(draw, draw_small, sizes):
    images = [image((draw_small if size <= 20 else draw)(size)) for size in sizes]
    offset = 6 + 16 * len(sizes)
    directory = b''
    for size, data in zip(sizes, images):
        directory += struct.pack('<BBBBHHII', size % 256, size % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return struct.pack('<HHH', 0, 1, len(sizes)) + directory + b''.join(images)


if __name__ == '__main__':
    folder = pathlib.Path(sys.argv[1])
    (folder / 'editor.ico').write_bytes(icon(editor, small_editor, (16, 20, 24, 32, 48)))
    (folder / 'return.ico').write_bytes(icon(back, small_back, (16, 20, 24, 32, 48)))
