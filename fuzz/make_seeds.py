#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets into fuzz/corpus/.

Run it again after changing a seed here; the files it writes are checked in.
"""
import os
import struct
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
BLANK = -987456321.0


def record(desc=b'', amount=BLANK, rate=BLANK, years=BLANK, payment=BLANK, per_year=-1,
           fifth=BLANK, spare=0):
    data = struct.pack('<h50sddddhd', spare, desc.ljust(50)[:50], amount, rate, years, payment,
                       per_year, fifth)
    return data + bytes(148 - len(data))


def numeric(hex_fields, desc=b''):
    """A record from the 42 bytes of its numeric fields (offsets 52 to 93)."""
    fields = bytes.fromhex(hex_fields)
    assert len(fields) == 42
    return struct.pack('<h50s', 0, desc.ljust(50)) + fields + bytes(54)


# Records that once made the engine slow or its texts wrong: tiny
# (subnormal) amounts in the period loops, a schedule of amounts near the
# largest double, and a rate whose percentage overflows.
TINY_INVESTMENT = numeric(
    '049a0baaafa31f008dedb5a0f7c6b03e3a4b462c0bc5377e0100000000000080ffff000080a0b16dcdc1')
TINY_LOAN = record(amount=1e-310, rate=0.032767, years=300, payment=5e-324, per_year=32767)
HUGE_LOAN = numeric(
    'da72d01ce354d77e9a9999999999b93f000000000000f03fda72d01ce354f7feff7f000080a0b16dcdc1')
HUGE_RATE = record(b'Huge rate', amount=1000, rate=1e307, years=10, payment=0, per_year=12)

TYPICAL = [
    record(b'Retirement', 1000, 0.12, 10, 100, 12),
    record(b'College', 0, 0.04, 3, BLANK, 4, 100000),
    record(b'Unknown rate', 1000, BLANK, 10, 0, 1, 2000),
    record(b'How long', 1000, 0.05, BLANK, 50, 12, 20000),
    record(b'Starting sum', BLANK, 0.07, 20, 0, 1, 50000),
    record(b'House', 100000, 0.05, 30, BLANK, 12),
    record(b'Car', 9600, 0.02, 4, 500, 12),
    record(b'Rate of a loan', 20000, BLANK, 5, 400, 12),
    record(b'Caf\xe9 \x80 \x81', 1, 0, 1, 1, 365),
    record(),
]
# The largest double as an amount: shown whole, its editing text must still
# read back.
LARGEST_AMOUNT = record(b'Largest amount', sys.float_info.max, 0.05, 10, 0, 12)
ODD = [TINY_INVESTMENT, TINY_LOAN, HUGE_LOAN, HUGE_RATE]

CELL_TEXTS = {
    # The first byte picks the locale (see fuzzcheck.h): 0 en_US, 1 de_DE,
    # 2 fr_FR, 3 he_IL, 4 fa_IR, 5 ar_EG.
    'amount': b'\x00$1,234.57 ',
    'negative': b'\x00($1,234.57)',
    'rate': b'\x0012.50%',
    'years': b'\x0010.5',
    'exponent': b'\x001e308',
    'marker': b'\x00-987456321',
    'rate_marker': b'\x00-98745632100%',
    'german': b'\x011.234,56 \xe2\x82\xac',
    'french': b'\x02-1\xe2\x80\xaf234,56\xc2\xa0\xe2\x82\xac',
    'hebrew': b'\x03\xe2\x80\x8e-1,234.57\xc2\xa0\xe2\x82\xaa',
    'persian': b'\x04\xdb\xb1\xdb\xb2\xdb\xb3\xd9\xab\xdb\xb4',
    'arabic_exponent': b'\x05\xd9\xa1\xd8\xa3\xd8\xb3\xd9\xa3',
    'period_count': b'\x0030\t12',
    'empty': b'\x00',
}

REPORT_ARGS = {
    'list': 'list\ninvestments\n',
    'list_csv_locale': 'list\nloans\n--format\ncsv\n--locale\nde_DE\n',
    'schedule_json': 'schedule\nloans\n1\n--format\njson\n',
    'schedule_text': 'schedule\ninvestments\n2\n',
    'schedule_negative': 'schedule\ninvestments\n-1\n',
    'solve': 'solve\ninvestment\n--initial\n1000\n--rate\n6.5%\n--years\n10\n--per-year\n12\n',
    'solve_loan': 'solve\nloan\n--initial=100000\n--rate=5\n--years=30\n--per-year=12\n'
                  '--format=json\n',
    'pdf': 'list\nloans\n--format\npdf\n--output\nloans.pdf\n',
    'chart': 'chart\ninvestments\n1\n--output\nchart.svg\n--size\n300x200\n',
    'help': '--help\n',
    'dir': 'list\ninvestments\n--dir\n.\n',
}


# Printed lines: a locale selector (0 en_US, 3 he_IL, 4 fa_IR, 5 ar_EG,
# 6 hi_IN), a style byte (font size, weight, where lines begin), then the
# lines as UTF-16.
PRINTOUTS = {
    'figures': (0, 0, '($1,234.57) \n10.00% \n30.0 '),
    'huge_figure': (0, 1, '$' + '9' * 300 + '.00 \n' + '1' * 200),
    'bold_heading': (0, 6, 'Investments\nDescription'),
    'hebrew': (3, 8, '\u200f-1,234.00\u00a0\u20aa \n\u05d0\u05d1 12 \u05d2 '),
    'persian': (4, 16, '\u06f1\u06f2\u066c\u06f3\u06f4\u06f5 \u0631\u06cc\u0627\u0644 '),
    'arabic': (5, 24, '\u0662\u0665\u0660\u066c\u0660\u0660\u0660\u066b\u0660\u0660\u00a0'
                      '\u062c.\u0645.\u200f '),
    'rupee': (6, 2, '\u20b9 12,34,567.00 \nPaid \u2713 office'),
    'controls': (0, 3, '\x00\x01\t\u00ad\u0301a\u2028b\ufeff'),
}


def printout(selector, style, text):
    return bytes([selector, style]) + text.encode('utf-16-le')


def write(target, name, data):
    folder = os.path.join(HERE, 'corpus', target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), 'wb') as f:
        f.write(data)


def main():
    write('fuzz_listfile', 'empty', b'')
    write('fuzz_listfile', 'typical', b''.join(TYPICAL))
    write('fuzz_listfile', 'odd_records', b''.join(ODD))
    write('fuzz_listfile', 'short_last_slot', b''.join(TYPICAL[:4]) + TYPICAL[4][:100])
    for name, data in [('tiny_investment', TINY_INVESTMENT), ('tiny_loan', TINY_LOAN),
                       ('huge_loan', HUGE_LOAN), ('huge_rate', HUGE_RATE)]:
        write('fuzz_listfile', name, data)
        write('fuzz_schedule', name, data)
    write('fuzz_listfile', 'largest_amount', LARGEST_AMOUNT)
    for k, data in enumerate(TYPICAL):
        write('fuzz_schedule', 'typical_%d' % k, data)
    for name, data in CELL_TEXTS.items():
        write('fuzz_celltext', name, data)
    for name, text in REPORT_ARGS.items():
        write('fuzz_report_args', name, text.encode())
    for name, (selector, style, text) in PRINTOUTS.items():
        write('fuzz_printout', name, printout(selector, style, text))


if __name__ == '__main__':
    main()
