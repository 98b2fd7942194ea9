"""The mesh of the example "Harbor": one object whose parts are named by what they are made of. Each has a patch
of its own, in which a texel is as large on all of its faces."""

import math

PARTS = ("Quay", "Jetty", "Warehouse", "Roof", "Crane", "Bollards", "Canvas", "Water")
MARGIN = 0.006  # around each piece, in patches
LAND, DECK = 0.26, 0.2  # heights over the water


class Piece:
    """A sheet of squares. `place` gets shares across and up; `width` and `height` are its lengths in space, and
    `texel` says where a share lies in them, by itself spread evenly."""

    def __init__(self, width, height, columns, rows, place, texel=None):
        self.width, self.height = width, height
        self.columns, self.rows = columns, rows
        self.place = place
        self.texel = texel or (lambda across, up: (across * width, up * height))
        self.corner = (0.0, 0.0)


def plus(a, b, share=1.0):
    return tuple(x + share * y for x, y in zip(a, b))


def minus(a, b):
    return plus(a, b, -1.0)


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def unit(a):
    length = math.sqrt(sum(x * x for x in a))
    return tuple(x / length for x in a)


class Mesh:
    """Pieces by part, and the file that they come to."""

    def __init__(self):
        self.pieces = {part: [] for part in PARTS}

    def add(self, part, piece):
        self.pieces[part].append(piece)

    def sheet(self, part, corner, right, up, columns=1, rows=1):
        """A rectangle that is seen where `right` leads to the right and `up` up."""
        width, height = math.dist(right, (0, 0, 0)), math.dist(up, (0, 0, 0))
        self.add(part, Piece(width, height, columns, rows,
                             lambda across, high: plus(plus(corner, right, across), up, high)))

    def box(self, part, low, high, without=""):
        """Sides that face along the axes but for those named: "l" and "r", "d" and "u", "b" and "f"."""
        size = minus(high, low)
        x, y, z = (size[0], 0, 0), (0, size[1], 0), (0, 0, size[2])
        for side, corner, right, up in (
                ("f", (low[0], low[1], high[2]), x, y), ("b", (high[0], low[1], low[2]), minus((0, 0, 0), x), y),
                ("r", (high[0], low[1], high[2]), minus((0, 0, 0), z), y), ("l", low, z, y),
                ("u", (low[0], high[1], high[2]), x, minus((0, 0, 0), z)), ("d", low, x, z)):
            if side not in without:
                steps = [max(1, min(24, round(math.dist(way, (0, 0, 0)) / 0.3))) for way in (right, up)]
                self.sheet(part, corner, right, up, *steps)

    def beam(self, part, start, end, thickness):
        """A square bar from one place to the other, without its ends."""
        along = minus(end, start)
        side = unit(cross(along, (0.3, 1, 0.2) if abs(unit(along)[1]) < 0.9 else (1, 0, 0)))
        other = unit(cross(side, along))
        half = thickness / 2
        for a, b in ((side, other), (other, minus((0, 0, 0), side)), (minus((0, 0, 0), side), minus((0, 0, 0), other)),
                     (minus((0, 0, 0), other), side)):
            corner = plus(plus(start, a, half), b, -half)
            self.sheet(part, corner, along, tuple(thickness * x for x in b), max(1, round(math.dist(start, end) / 0.15)))

    def turned(self, part, foot, profile, steps=20):
        """What a lathe makes: `profile` are distances from the axis and heights, upwards."""
        lengths = [0.0]
        for one, next_one in zip(profile, profile[1:]):
            lengths.append(lengths[-1] + math.dist(one, next_one))
        around = 2 * math.pi * max(distance for distance, _ in profile)

        def place(across, up):
            distance, height = profile[round(up * (len(profile) - 1))]
            angle = 2 * math.pi * across
            return (foot[0] + distance * math.sin(angle), foot[1] + height, foot[2] + distance * math.cos(angle))

        self.add(part, Piece(around, lengths[-1], steps, len(profile) - 1, place,
                             lambda across, up: (across * around, lengths[round(up * (len(profile) - 1))])))

    def tube(self, part, middle, length, thickness, steps, around=8):
        """Along a line in space, from its share 0 to 1."""

        def place(across, up):
            here = middle(across)
            ahead = unit(minus(middle(min(1, across + 1e-3)), middle(max(0, across - 1e-3))))
            side = unit(cross(ahead, (0.01, 1, 0.02)))
            other = cross(side, ahead)
            angle = 2 * math.pi * up
            return plus(plus(here, side, -thickness * math.cos(angle)), other, thickness * math.sin(angle))

        self.add(part, Piece(length, 2 * math.pi * thickness, steps, around, place))

    # --- the file

    @staticmethod
    def pack(pieces, scale):
        """Rows of pieces from the lower left, the highest first; whether all fit into the patch."""
        x = y = MARGIN
        row = 0.0
        for piece in sorted(pieces, key=lambda one: -one.height):
            width, height = piece.width * scale, piece.height * scale
            if x + width + MARGIN > 1 and x > MARGIN:
                x, y, row = MARGIN, y + row + 2 * MARGIN, 0.0
            if x + width + MARGIN > 1 or y + height + MARGIN > 1:
                return False
            piece.corner = (x, y)
            x, row = x + width + 2 * MARGIN, max(row, height)
        return True

    def write(self, path):
        lines, places = ["o Harbor"], 1
        for patch, part in enumerate(PARTS):
            low, high = 0.0, 100.0
            for _ in range(40):
                middle = (low + high) / 2
                low, high = (middle, high) if self.pack(self.pieces[part], middle) else (low, middle)
            self.pack(self.pieces[part], low)
            lines.append("usemtl " + part)
            for piece in self.pieces[part]:
                for row in range(piece.rows + 1):
                    for column in range(piece.columns + 1):
                        across, up = column / piece.columns, row / piece.rows
                        u, v = piece.texel(across, up)
                        lines.append("v %.5f %.5f %.5f" % piece.place(across, up))
                        lines.append("vt %.5f %.5f" % (patch + piece.corner[0] + u * low, piece.corner[1] + v * low))
                for row in range(piece.rows):
                    for column in range(piece.columns):
                        first = places + row * (piece.columns + 1) + column
                        above = first + piece.columns + 1
                        lines.append("f " + " ".join("%d/%d" % (one, one) for one in (first, first + 1, above + 1, above)))
                places += (piece.columns + 1) * (piece.rows + 1)
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(lines) + "\n")


# --- what stands there


def quay(mesh):
    mesh.box("Quay", (-1.6, -0.25, -1.2), (1.6, LAND, 0.3), "d")
    mesh.box("Quay", (-1.6, LAND, 0.22), (1.6, LAND + 0.035, 0.3), "d")  # its edge
    for x in (-0.35, 0.45, 1.25):  # fenders
        mesh.box("Jetty", (x - 0.03, -0.2, 0.3), (x + 0.03, LAND - 0.03, 0.345), "bd")
    mesh.sheet("Water", (-1.6, 0, 1.3), (3.2, 0, 0), (0, 0, -1.0), 24, 8)


def jetty(mesh):
    left, right, end = -1.35, -0.85, 1.2
    for index in range(10):  # planks across it
        low = 0.3 + index * (end - 0.3) / 10
        mesh.box("Jetty", (left, DECK - 0.03, low + 0.004), (right, DECK, low + (end - 0.3) / 10 - 0.004))
    for x in (left + 0.03, right - 0.03):
        mesh.beam("Jetty", (x, DECK - 0.05, 0.3), (x, DECK - 0.05, end), 0.04)
        for z in (0.55, 0.86, 1.16):
            top = DECK + (0.14 if z > 1 else -0.03)
            profile = [(0.035, -0.25 + (top + 0.25) * step / 8) for step in range(9)]
            mesh.turned("Jetty", (x + (0.045 if x > -1 else -0.045), 0, z), profile + [(0.02, top + 0.01), (0.001, top + 0.01)], 12)


def warehouse(mesh):
    left, right, back, front, eaves, ridge = -1.45, -0.1, -1.1, -0.35, 0.82, 1.16
    middle, width, depth = (back + front) / 2, right - left, front - back
    mesh.sheet("Warehouse", (left, LAND, front), (width, 0, 0), (0, eaves - LAND, 0), 12, 5)
    mesh.sheet("Warehouse", (right, LAND, back), (-width, 0, 0), (0, eaves - LAND, 0), 12, 5)
    for x, start, way in ((right, front, -depth), (left, back, depth)):

        def wall_height(across):
            return eaves - LAND + (ridge - eaves) * (1 - abs(2 * across - 1))

        mesh.add("Warehouse", Piece(
            depth, ridge - LAND, 12, 6,
            lambda across, up, x=x, start=start, way=way: (x, LAND + up * wall_height(across), start + across * way),
            lambda across, up: (across * depth, up * wall_height(across))))
    for side in (1, -1):  # corrugated sheets, above and below
        for lift in (0.03, 0.0):
            over, slope = 0.1, (ridge - eaves) / (depth / 2)

            def roof(across, up, side=side, lift=lift):
                out = (1 - up) * (depth / 2 + over)
                turn = across if (side > 0) == (lift > 0) else 1 - across
                x = left - over + turn * (width + 2 * over)
                wave = 0.008 * math.sin(turn * 2 * math.pi * 26) if lift else 0.0
                return (x, ridge + lift + wave - out * slope, middle + side * out)

            mesh.add("Roof", Piece(width + 2 * over, math.hypot(1, slope) * (depth / 2 + over), 26 * 8 if lift else 1, 1, roof))
    mesh.beam("Roof", (left - 0.1, ridge + 0.035, middle), (right + 0.1, ridge + 0.035, middle), 0.05)
    # Its gate in the front, which rolls along a rail; shutters beside it, and a hatch in the gable.
    mesh.box("Jetty", (-0.95, LAND, front), (-0.55, LAND + 0.42, front + 0.03), "bd")
    mesh.beam("Roof", (-1.05, LAND + 0.44, front + 0.03), (-0.15, LAND + 0.44, front + 0.03), 0.025)
    for x in (-1.25, -0.33):
        mesh.box("Jetty", (x - 0.09, LAND + 0.17, front), (x + 0.09, LAND + 0.38, front + 0.018), "b")
    mesh.box("Jetty", (right, LAND + 0.42, middle - 0.1), (right + 0.018, LAND + 0.68, middle + 0.1), "l")


def crane(mesh):
    x, z, half, top = 1.05, -0.42, 0.2, 1.25
    corners = [(x - half, z + half), (x + half, z + half), (x + half, z - half), (x - half, z - half)]
    for index, (a, b) in enumerate(corners):
        mesh.box("Quay", (a - 0.07, LAND, b - 0.07), (a + 0.07, LAND + 0.05, b + 0.07), "d")
        mesh.beam("Crane", (a, LAND + 0.05, b), (x + 0.55 * (a - x), top, z + 0.55 * (b - z)), 0.06)
        c, d = corners[(index + 1) % 4]
        for step in range(3):
            low, high = step / 3, (step + 1) / 3
            narrow = [1 - 0.45 * one for one in (low, high)]
            heights = [LAND + 0.05 + (top - LAND - 0.05) * one for one in (low, high)]
            mesh.beam("Crane", (x + narrow[0] * (a - x), heights[0], z + narrow[0] * (b - z)),
                      (x + narrow[1] * (c - x), heights[1], z + narrow[1] * (d - z)), 0.028)
            mesh.beam("Crane", (x + narrow[1] * (a - x), heights[1], z + narrow[1] * (b - z)),
                      (x + narrow[1] * (c - x), heights[1], z + narrow[1] * (d - z)), 0.028)
    mesh.turned("Crane", (x, top, z), [(0.17, 0.0), (0.17, 0.05), (0.12, 0.05), (0.12, 0.09)], 24)
    mesh.box("Crane", (x - 0.15, top + 0.07, z - 0.3), (x + 0.15, top + 0.36, z + 0.15))
    mesh.box("Bollards", (x - 0.13, top + 0.1, z - 0.42), (x + 0.13, top + 0.3, z - 0.3), "f")  # counterweight
    tip = (x - 0.1, top + 0.62, z + 1.25)
    for side in (-0.09, 0.09):
        foot = (x + side, top + 0.16, z + 0.13)
        mesh.beam("Crane", foot, (tip[0] + side * 0.3, tip[1], tip[2]), 0.04)
        mesh.beam("Crane", (x + side, top + 0.36, z + 0.02), (tip[0] + side * 0.3, tip[1] + 0.03, tip[2]), 0.022)
    for step in range(1, 9):
        share, odd = step / 9, 1 if step % 2 else -1
        ends = [plus((x, top + 0.16, z + 0.13), minus(tip, (x, top + 0.16, z + 0.13)), one) for one in (share, share + 0.08)]
        wide = 0.09 - 0.06 * share
        mesh.beam("Crane", plus(ends[0], (-wide * odd, 0, 0)), plus(ends[1], (wide * odd, 0, 0)), 0.018)
    hook = 0.62
    mesh.tube("Bollards", lambda share: (tip[0], tip[1] - share * (tip[1] - hook), tip[2]), tip[1] - hook, 0.008, 4, 6)
    mesh.turned("Crane", (tip[0], hook - 0.09, tip[2]), [(0.001, 0.0), (0.03, 0.01), (0.045, 0.05), (0.03, 0.09), (0.008, 0.1)], 12)
    mesh.tube("Bollards", lambda share: (tip[0] + 0.035 * math.sin(4.2 * share), hook - 0.125 + 0.035 * math.cos(4.2 * share), tip[2]),
              0.15, 0.009, 10, 6)


def bollards(mesh):
    profile = [(0.09, 0.0), (0.09, 0.02), (0.055, 0.03), (0.048, 0.09), (0.055, 0.12), (0.085, 0.14), (0.09, 0.165), (0.07, 0.19),
               (0.035, 0.2), (0.001, 0.202)]
    for x in (-0.55, 0.42, 1.4):
        mesh.turned("Bollards", (x, LAND, 0.12), profile, 24)
    drum = [(0.001, 0.0), (0.085, 0.0), (0.088, 0.01), (0.085, 0.02), (0.085, 0.085), (0.09, 0.09), (0.085, 0.095), (0.085, 0.16),
            (0.09, 0.165), (0.085, 0.17), (0.085, 0.235), (0.088, 0.245), (0.085, 0.252), (0.08, 0.244), (0.001, 0.244)]
    for place in ((1.42, LAND, -0.85), (1.42, LAND, -0.66), (1.24, LAND, -0.93)):
        mesh.turned("Bollards", place, drum, 24)


def canvas(mesh):
    """A tarpaulin over cargo, ropes and sacks."""
    x, z, wide, deep, high = 0.32, -0.28, 0.36, 0.27, 0.34

    def tarpaulin(across, up):
        a, b = 2 * across - 1, 1 - 2 * up
        out = max(abs(a), abs(b))
        angle = math.atan2(b, a)
        folds = 0.02 * math.sin(17 * angle) + 0.012 * math.sin(31 * angle + 1)
        hang = max(0.0, (out - 0.62) / 0.38)
        spread = 0.72 + 0.13 * hang + folds * hang * 2
        reach = min(out, 0.62) / 0.62
        scale = spread * reach / max(out, 1e-6)
        sag = 0.03 * math.cos(3.3 * a + 0.4) * math.cos(2.6 * b)
        return (x + wide * a * scale, LAND + 0.004 + (high + sag * (1 - hang)) * (1 - hang ** 1.3), z + deep * b * scale)

    mesh.add("Canvas", Piece(1.1, 0.95, 48, 48, tarpaulin))
    for layer in range(3):  # a coil
        for ring in range(3 - layer // 2):
            radius = 0.085 - 0.026 * ring

            def coil(share, radius=radius, layer=layer):
                angle = 2 * math.pi * share
                return (-0.12 + radius * math.cos(angle), LAND + 0.013 + 0.023 * layer, 0.08 - radius * math.sin(angle))

            mesh.tube("Canvas", coil, 2 * math.pi * radius, 0.0135, 36)
    start, end = (-0.6, LAND + 0.08, 0.12), (-0.78, DECK + 0.09, 1.16)

    def mooring(share):
        low = 0.12 * 4 * share * (1 - share)
        return plus(plus(start, minus(end, start), share), (0, -low, 0))

    mesh.tube("Canvas", mooring, 1.1, 0.011, 28)
    for place in ((0.88, -1.0), (0.66, -1.02), (0.77, -0.86)):  # sacks

        def sack(across, up, place=place):
            turn, high = 2 * math.pi * across, math.pi * (up - 0.5)
            flat = math.copysign(abs(math.cos(high)) ** 0.6, math.cos(high))
            pinch = 1 + 0.12 * math.cos(4 * turn)
            return (place[0] + 0.11 * flat * pinch * math.sin(turn), LAND + 0.06 + 0.062 * math.sin(high),
                    place[1] + 0.075 * flat * pinch * math.cos(turn))

        mesh.add("Canvas", Piece(0.6, 0.24, 28, 12, sack))


def write(path):
    mesh = Mesh()
    for part in (quay, jetty, warehouse, crane, bollards, canvas):
        part(mesh)
    mesh.write(path)
