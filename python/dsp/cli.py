"""``python -m dsp spectrum FILE``: the strongest tones of a recording and its noise density.

The level of each tone comes from a spectrum with the chosen window (the flat-top by default:
within 0.01 dB wherever the tone falls between bins), its frequency from a spectrum with a
Kaiser window, whose narrow, nearly Gaussian peak the parabola through the three highest
decibel values locates to a small fraction of a bin. Both are zero-padded to four times the
next power of two of the record.
"""

import argparse
import os
import sys
import wave

import numpy as np

from . import elementwise, stats, windows as win

LOCATING_WINDOW = "Kaiser90"
PADDING = 4
GUARD_BINS = 20  # unpadded bins around a tone (and above 0 Hz) left out of the noise floor
SEPARATION_BINS = 8  # unpadded bins between two reported tones
DYNAMIC_RANGE_DB = 90.0  # tones reported down to this far below the strongest,
ABOVE_MEDIAN_DB = 20.0  # this far above the median level of the spectrum, which noise sets,
ABOVE_LEAKAGE_DB = 10.0  # and this far above the window's leakage from every stronger tone


def read_wav(path, channel):
    """Samples of one channel of a PCM WAV file, full scale 1, and its sample rate."""
    with wave.open(path, "rb") as f:
        width, channels, rate = f.getsampwidth(), f.getnchannels(), f.getframerate()
        raw = np.frombuffer(f.readframes(f.getnframes()), np.uint8)
    if not 0 <= channel < channels:
        raise ValueError(f"{path} has {channels} channel(s), not a channel {channel}")
    raw = raw.reshape(-1, channels, width)[:, channel, :]
    if width == 1:
        return (raw[:, 0].astype(np.float64) - 128.0) / 128.0, rate
    # Little-endian signed integers of 2, 3 or 4 bytes, widened to 4 bytes.
    wide = np.zeros((raw.shape[0], 4), np.uint8)
    wide[:, 4 - width:] = raw
    return wide.view("<i4")[:, 0] / 2.0**31, rate


def read_text(path, column):
    """One column of a text or CSV file: numbers separated by commas, semicolons or blanks;
    '#' starts a comment; lines without a number in the column (headings) are skipped."""
    values = []
    with open(path) as f:
        for line in f:
            fields = line.split("#", 1)[0].replace(",", " ").replace(";", " ").split()
            try:
                values.append(float(fields[column]))
            except (IndexError, ValueError):
                continue
    return np.array(values)


def power_spectrum(x, rate, window, average):
    """Power of a sine per bin, 2 |X|^2 with a unit-mean window, averaged over `average`
    consecutive segments; the bin spacing and the segment length."""
    segment = len(x) // average
    length = PADDING * (1 << max(segment - 1, 1).bit_length())
    s = win.averaged_spectrum(x, average, window, "mean", length, 1.0 / rate)
    return 2.0 * s.values, s.delta, segment


def leakage_db(window, segment, length):
    """The window's power response in dB re its peak at every offset in padded bins, as its
    decreasing envelope: no tone leaks more than this at that offset or beyond."""
    w = win.spectrum(np.ones(segment), window, "mean", "power", length).values
    return elementwise.db(np.maximum.accumulate(w[::-1])[::-1] / w[0])


def analyse(x, rate, window="Flattop", average=1, tones=5):
    """Tones (frequency, level in dB re a sine of rms 1), noise density and the level spectrum."""
    if len(x) // average < 16:
        raise ValueError(f"{len(x)} samples are too few for {average} segment(s) of 16")
    level, bin_hz, segment = power_spectrum(x, rate, window, average)
    locate = power_spectrum(x, rate, LOCATING_WINDOW, average)[0]
    level_db, locate_db = elementwise.db(level), elementwise.db(locate)
    scale = len(level) * 2 // segment  # padded bins per unpadded bin (about PADDING)
    k = np.arange(1, len(level) - 1)
    peaks = k[(level_db[k] >= level_db[k - 1]) & (level_db[k] > level_db[k + 1])]
    leak = leakage_db(window, segment, 2 * (len(level) - 1))
    found = []
    least = max(np.median(level_db) + ABOVE_MEDIAN_DB, level_db.max() - DYNAMIC_RANGE_DB)
    for p in peaks[np.argsort(-level_db[peaks], kind="stable")]:
        if len(found) == tones or level_db[p] < least:
            break
        # A tone between bins moves its side lobes by up to one bin: the envelope is taken
        # from one unpadded bin closer.
        if all(abs(p - q) > SEPARATION_BINS * scale and level_db[p] > level_db[q] + ABOVE_LEAKAGE_DB
               + leak[max(abs(p - q) - scale, 0)] for q in found):
            found.append(p)
    result = []
    for p in found:
        half = SEPARATION_BINS * scale // 2
        lo = max(p - half, 0)
        j = lo + int(np.argmax(locate_db[lo:p + half + 1]))
        result.append((stats.peak(locate_db, index=j)[1] * bin_hz,
                       stats.peak(level_db, index=p)[0]))
    keep = np.ones(len(level), bool)
    guard = GUARD_BINS * scale
    keep[:guard], keep[-1] = False, False
    for p in found:
        keep[max(p - guard + 1, 0):p + guard] = False
    enbw = float(win.enbw(window, segment))
    rbw = enbw * rate / segment
    density = 10.0 * np.log10(level[keep].mean() / rbw) if keep.any() and level[keep].mean() > 0 else None
    return dict(tones=result, density=density, enbw=enbw, rbw=rbw, bin=bin_hz, segment=segment,
                level_db=level_db, frequencies=np.arange(len(level)) * bin_hz)


def plot(path, a, title):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    fig, ax = plt.subplots(figsize=(8, 4), dpi=100)
    ax.plot(a["frequencies"], a["level_db"], lw=0.7)
    for f, lv in a["tones"]:
        ax.plot([f], [lv], "v", color="C3")
        ax.annotate(f"{f:.2f} Hz\n{lv:.2f} dB", (f, lv), textcoords="offset points", xytext=(4, 4),
                    fontsize=8)
    top = a["level_db"].max()
    ax.set_ylim(max(np.percentile(a["level_db"], 1), top - 160) - 10, top + 15)
    ax.set(xlabel="frequency / Hz", ylabel="power of a sine / dB", title=title)
    ax.grid(alpha=0.3)
    fig.tight_layout()
    fig.savefig(path)
    plt.close(fig)


def spectrum_command(args):
    if args.file.lower().endswith(".wav"):
        x, rate = read_wav(args.file, args.column)
        rate = args.rate or rate
    else:
        if not args.rate:
            raise ValueError("a text file needs --rate HZ")
        x, rate = read_text(args.file, args.column), args.rate
    a = analyse(x, rate, args.window, args.average, args.tones)
    print(f"signal: {len(x)} samples at {rate:g} Hz from {args.file}")
    averages = f", {args.average} averages of {a['segment']} samples" if args.average > 1 else ""
    print(f"window: {args.window}, ENBW {a['enbw']:.4f} bins, resolution bandwidth "
          f"{a['rbw']:.3f} Hz, bin spacing {a['bin']:.3f} Hz{averages}")
    for i, (f, lv) in enumerate(a["tones"], 1):
        print(f"tone {i}: frequency {f:.3f} Hz, level {lv:.3f} dB")
    density = "not measurable" if a["density"] is None else f"{a['density']:.2f} dB/Hz"
    print(f"noise density: {density}")
    if args.plot:
        plot(args.plot, a, f"{os.path.basename(args.file)}: {args.window}, RBW {a['rbw']:.3g} Hz")
        print(f"plot: {args.plot}")


def main(argv=None):
    parser = argparse.ArgumentParser(prog="python -m dsp")
    commands = parser.add_subparsers(dest="command", required=True)
    p = commands.add_parser("spectrum", help="strongest tones and noise density of a recording",
                            description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    p.add_argument("file", help="WAV file (PCM), or text/CSV with one number per line and column")
    p.add_argument("--rate", type=float, help="sample rate in Hz (needed for text files)")
    p.add_argument("--column", type=int, default=0, help="column of a text file, channel of a WAV")
    p.add_argument("--window", default="Flattop", help="window for levels and noise (Flattop)")
    p.add_argument("--average", type=int, default=1, help="average the spectra of N segments")
    p.add_argument("--tones", type=int, default=5, help="report at most N tones (5)")
    p.add_argument("--plot", metavar="PNG", help="draw the spectrum in dB with the tones marked")
    args = parser.parse_args(argv)
    if args.average < 1 or args.tones < 0 or (args.rate is not None and args.rate <= 0):
        parser.error("--average and --rate must be positive, --tones not negative")
    try:
        win.window_kind(args.window)
        spectrum_command(args)
    except (OSError, ValueError, wave.Error) as e:  # DspError is a ValueError
        print(f"python -m dsp spectrum: {e}", file=sys.stderr)
        return 1
    return 0
