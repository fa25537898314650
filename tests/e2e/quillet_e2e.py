#!/usr/bin/env python3
"""Quillet end to end, as a person uses it.

Starts the real quillet under an X server of its own (Xvfb, no window
manager, so every window sits where the program puts it) in a temporary
directory, and drives it with xdotool: clicks at the laid-out positions,
typing, Tab, Enter, Escape and the mouse wheel. After each step the list
files' bytes are compared with the records the step must leave, and a
screenshot of each window is kept under the artifacts directory.

usage: quillet_e2e.py QUILLET ARTIFACTS-DIR
Exits 0 when every scenario passes, 1 on a failure, 77 (skipped) when Xvfb or
xdotool is missing.
"""

import os
import pwd
import re
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import time

TWIPS_PER_PIXEL = 15  # 1440 twips an inch at 96 dots an inch
BLANK = -987456321.0
SLOT = 148
WAIT_SECONDS = 15  # the longest any step may take to show its effect

# Rectangles in twips (left, top, width, height), relative to each window's
# client area.
ADD_NEW = (0, 0, 1035, 600)
COPY = (1030, 0, 1035, 600)
DELETE = (2070, 0, 1035, 600)
UNDO = (3100, 0, 1035, 600)
MOVE_UP = (4140, 0, 1035, 600)
MOVE_DOWN = (5180, 0, 1035, 600)
AMORTIZE = (6210, 0, 1035, 600)
PRINT = (7250, 0, 1035, 600)
EXIT = (10260, 0, 1035, 600)
INVESTMENTS = (340, 765, 1695, 405)
LOANS = (2080, 765, 1695, 405)
COLUMNS = {  # left, width of the grid's columns
    'Sel': (60, 263),
    'Desc': (340, 3200),
    'InitialAmount': (3540, 1695),
    'Yield': (5220, 1215),
    'Years': (6420, 615),
    'Payment': (7020, 1530),
    'PerYear': (8520, 910),
    'FutureValue': (9420, 1575),
}
SCHEDULE_YEARS = (3300, 1125, 4815, 330)
SCHEDULE_PRINT = (8340, 90, 1635, 1050)
SCHEDULE_EXIT = (8340, 1440, 1635, 1050)


def cell(column, row):
    """The rectangle of a grid cell, row 1 to 14."""
    left, width = COLUMNS[column]
    return (left, 1530 + 270 * (row - 1), width, 285)


def pixels(twips):
    return twips // TWIPS_PER_PIXEL


class Failure(Exception):
    pass


# ---------------------------------------------------------------- records

def record(desc=b'', amount=BLANK, rate=BLANK, years=BLANK, payment=BLANK, per_year=-1,
           fifth=BLANK):
    data = struct.pack('<h50sddddhd', 0, desc.ljust(50), amount, rate, years, payment,
                       per_year, fifth)
    return data + bytes(SLOT - len(data))


def replaced(rec, **fields):
    """The record with some fields changed; the names are the file's."""
    spare, desc, amount, rate, years, payment, per_year, fifth = struct.unpack_from(
        '<h50sddddhd', rec)
    values = dict(desc=desc, amount=amount, rate=rate, years=years, payment=payment,
                  per_year=per_year, fifth=fifth)
    values.update(fields)
    if isinstance(values['desc'], str):
        values['desc'] = values['desc'].encode('cp1252')
    return record(**values)


def describe(data):
    """A list file's records as text, for failure messages."""
    lines = []
    for n in range(0, len(data), SLOT):
        slot = data[n:n + SLOT]
        if len(slot) < 94:
            lines.append('  %d: %d stray bytes' % (n // SLOT + 1, len(slot)))
            continue
        _, desc, *numbers = struct.unpack_from('<h50sddddhd', slot)
        lines.append('  %d: %r %s' % (n // SLOT + 1, desc.rstrip().decode('cp1252'),
                                      ' '.join('blank' if v == BLANK else repr(v)
                                               for v in numbers)))
    return '\n'.join(lines) or '  (empty)'


def write_list(path, records):
    with open(path, 'wb') as f:
        f.write(b''.join(records))


# ------------------------------------------------------------- the display

class Display:
    """Xvfb on a display number of its own choosing."""

    def __init__(self, workdir):
        # The server writes its number again whenever it resets: -noreset
        # keeps it from resetting when its last client leaves, and the pipe
        # stays open as long as the server runs.
        self.pipe, write_end = os.pipe()
        self.log = open(os.path.join(workdir, 'xvfb.log'), 'wb')
        self.process = subprocess.Popen(
            ['Xvfb', '-displayfd', str(write_end), '-screen', '0', '1024x768x24',
             '-nolisten', 'tcp', '-noreset'],
            pass_fds=(write_end,), stdout=self.log, stderr=subprocess.STDOUT)
        os.close(write_end)
        ready, _, _ = select.select([self.pipe], [], [], WAIT_SECONDS)
        number = os.read(self.pipe, 64).decode().strip() if ready else ''
        if not number:
            self.close()
            raise Failure('Xvfb did not start')
        self.name = ':' + number

    def close(self):
        if self.process.poll() is None:
            self.process.terminate()
            self.process.wait(10)
        self.log.close()
        os.close(self.pipe)


class Desktop:
    """What a person does with mouse and keyboard, and what they see."""

    def __init__(self, display, artifacts):
        self.env = dict(os.environ, DISPLAY=display.name)
        self.env.pop('QT_QPA_PLATFORM', None)
        self.artifacts = artifacts

    def xdotool(self, *args, timeout=WAIT_SECONDS):
        try:
            result = subprocess.run(['xdotool', *map(str, args)], env=self.env,
                                    capture_output=True, text=True, timeout=timeout)
        except subprocess.TimeoutExpired:
            raise Failure('xdotool %s: nothing after %d s' % (' '.join(map(str, args)), timeout))
        if result.returncode != 0 and args[0] != 'search':
            raise Failure('xdotool %s failed: %s' % (' '.join(map(str, args)), result.stderr))
        return result.stdout

    def visible(self, title):
        out = self.xdotool('search', '--onlyvisible', '--name', '^%s$' % title)
        return [line for line in out.split() if line]

    def wait_window(self, title):
        """The window with that title, once it is shown."""
        deadline = time.monotonic() + WAIT_SECONDS
        while time.monotonic() < deadline:
            windows = self.visible(title)
            if windows:
                return windows[-1]
            time.sleep(0.05)
        raise Failure('no window "%s" appeared' % title)

    def wait_gone(self, title):
        deadline = time.monotonic() + WAIT_SECONDS
        while time.monotonic() < deadline:
            if not self.visible(title):
                return
            time.sleep(0.05)
        raise Failure('the window "%s" did not close' % title)

    def click(self, window, rect, button=1):
        left, top, width, height = rect
        self.xdotool('mousemove', '--window', window, pixels(left + width // 2),
                     pixels(top + height // 2), 'click', button)

    def wheel(self, window, rect, notches):
        """Turns the wheel over a point: down for positive notches."""
        left, top, width, height = rect
        self.xdotool('mousemove', '--window', window, pixels(left + width // 2),
                     pixels(top + height // 2))
        self.xdotool('click', '--repeat', abs(notches), 5 if notches > 0 else 4)

    def focus(self, window):
        """Keyboard focus on the window, as a click on it gives. Keys then go
        through the same input queue as the clicks before them, so they
        arrive after them."""
        if self.xdotool('getwindowfocus').strip() != str(window):
            self.xdotool('windowfocus', '--sync', window)

    def key(self, window, *keys):
        self.focus(window)
        self.xdotool('key', *keys)

    def answer(self, window, title, key):
        """A key that closes a dialog, pressed again while the dialog stays:
        a file dialog shown a moment ago may not take its first key yet."""
        deadline = time.monotonic() + WAIT_SECONDS
        while time.monotonic() < deadline:
            self.key(window, key)
            pressed = time.monotonic()
            while time.monotonic() < pressed + 0.5:
                if window not in self.visible(title):
                    return
                time.sleep(0.05)
        raise Failure('the window "%s" did not close on %s' % (title, key))

    def type(self, window, text):
        self.focus(window)
        self.xdotool('type', '--delay', 5, text)

    def pixel_hash(self, path):
        return subprocess.run(['identify', '-format', '%#', path], capture_output=True,
                              text=True, check=True).stdout

    def screenshot(self, window, name, ready=None):
        """A picture of the window once it shows what ready() looks for, or,
        without ready, once it has stopped changing. After WAIT_SECONDS the
        last picture is kept for the caller's checks to say what is wrong."""
        path = os.path.join(self.artifacts, name + '.png')
        deadline = time.monotonic() + WAIT_SECONDS
        previous = None
        while True:
            subprocess.run(['import', '-window', window, path], env=self.env, check=True,
                           capture_output=True)
            if ready is not None:
                if ready(path):
                    return path
            else:
                current = self.pixel_hash(path)
                if current == previous:
                    return path
                previous = current
            if time.monotonic() > deadline:
                return path
            time.sleep(0.05)


def stroke_width(png, rect):
    """The mean length of the dark runs along the rows of a cell's text: about
    1.3 pixels for Arial 9 pt regular, about 2 for bold."""
    left, top, width, height = (pixels(v) for v in rect)
    x, y, w, h = left + 2, top + 2, width - 4, height - 4
    raw = subprocess.run(['convert', png, '-crop', '%dx%d+%d+%d' % (w, h, x, y), '+repage',
                          '-colorspace', 'Gray', '-depth', '8', 'gray:-'],
                         capture_output=True, check=True).stdout
    runs = []
    for r in range(h):
        length = 0
        for value in raw[r * w:(r + 1) * w]:
            if value < 110:
                length += 1
            elif length:
                runs.append(length)
                length = 0
        if length:
            runs.append(length)
    return sum(runs) / len(runs) if runs else 0.0


def is_bold(png, rect):
    return stroke_width(png, rect) >= 1.65


def expect_bold(png, rect, what):
    width = stroke_width(png, rect)
    if width < 1.65:
        raise Failure('%s is not bold (strokes %.2f px wide) in %s' % (what, width, png))


def expect_regular(png, rect, what):
    width = stroke_width(png, rect)
    if width == 0:
        raise Failure('%s shows nothing in %s' % (what, png))
    if width >= 1.65:
        raise Failure('%s is bold (strokes %.2f px wide) in %s' % (what, width, png))


def expect_file(path, records, step):
    """Waits for the file to hold exactly these records."""
    expected = b''.join(records)
    deadline = time.monotonic() + WAIT_SECONDS
    actual = None
    while time.monotonic() < deadline:
        try:
            with open(path, 'rb') as f:
                actual = f.read()
        except FileNotFoundError:
            actual = None
        if actual == expected:
            return
        time.sleep(0.02)
    raise Failure('%s: %s holds\n%s\nexpected\n%s' % (
        step, os.path.basename(path), describe(actual or b''), describe(expected)))


def expect_unchanged(path, records, step):
    """The file holds these records and keeps them while the program works."""
    expect_file(path, records, step)
    with open(path, 'rb') as f:
        if f.read() != b''.join(records):
            raise Failure('%s: %s changed' % (step, os.path.basename(path)))


def wait_for_pdf(path, step):
    deadline = time.monotonic() + WAIT_SECONDS
    while time.monotonic() < deadline:
        if os.path.exists(path):
            with open(path, 'rb') as f:
                data = f.read()
            if data.startswith(b'%PDF-') and data.rstrip().endswith(b'%%EOF'):
                return data
        time.sleep(0.05)
    raise Failure('%s: no complete PDF %s' % (step, path))


def pdf_text(path):
    if not shutil.which('pdftotext'):
        return None
    return subprocess.run(['pdftotext', '-layout', path, '-'], capture_output=True, text=True,
                          check=True).stdout


# --------------------------------------------------------------- Quillet

class Quillet:
    def __init__(self, desktop, program, folder, user=None):
        self.desktop = desktop
        self.folder = folder
        env = dict(desktop.env, LC_ALL='en_US.UTF-8', LANG='en_US.UTF-8',
                   # No printing system: Print must offer a PDF.
                   CUPS_SERVER=os.path.join(folder, 'no-cups.sock'))
        command = [program]
        if user:
            account = pwd.getpwnam(user)
            command = ['setpriv', '--reuid=%d' % account.pw_uid, '--regid=%d' % account.pw_gid,
                       '--clear-groups', '--'] + command
        self.log = open(os.path.join(folder, '..', os.path.basename(folder) + '.log'), 'wb')
        self.process = subprocess.Popen(command, cwd=folder, env=env, stdout=self.log,
                                        stderr=subprocess.STDOUT)

    def main_window(self):
        return self.desktop.wait_window('Fennrow')

    def wait_exit(self):
        try:
            return self.process.wait(WAIT_SECONDS)
        except subprocess.TimeoutExpired:
            raise Failure('quillet did not end')

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait(10)
        self.log.close()

    def path(self, name):
        return os.path.join(self.folder, name)


def answer_pdf_dialogs(desktop, shot_prefix):
    """No printer: the program says so and offers a PDF; the person accepts
    and keeps the proposed file name."""
    question = desktop.wait_window('Quillet')
    desktop.screenshot(question, shot_prefix + '-no-printer')
    desktop.answer(question, 'Quillet', 'Return')
    dialog = desktop.wait_window('Save the Printout as PDF')
    desktop.screenshot(dialog, shot_prefix + '-save-dialog')
    desktop.answer(dialog, 'Save the Printout as PDF', 'Return')


# -------------------------------------------------------------- scenarios

RETIREMENT = record(b'Retirement', 1000.0, 0.12, 10.0, 100.0, 12)
COLLEGE = record(b'College', 0.0, 0.04, 3.0, BLANK, 4, 100000.0)
SAVINGS = record(b'Savings', 5000.0, 0.05, 10.0, 50.0, 12)
BLANK_RECORD = record()
LOANS_LIST = [record(b'House', 100000.0, 0.05, 30.0, BLANK, 12)] + [
    record(('Loan %d' % n).encode(), 1000.0 * n, 0.06, 5.0, BLANK, 12) for n in range(2, 21)]


class Day:
    """The session the working-day scenarios share: the program, its main
    window, and the records each list file must hold."""

    def __init__(self, desktop, app):
        self.desktop = desktop
        self.app = app
        self.main = app.main_window()
        self.in_dat = app.path('In.dat')
        self.ln_dat = app.path('Ln.dat')
        self.investments = [RETIREMENT, COLLEGE, SAVINGS]
        self.loans = list(LOANS_LIST)

    def edit(self, window, rect, text, leave='Return', replace=True):
        """Clicks a field, types, and leaves it with a key."""
        self.desktop.click(window, rect)
        if replace:
            self.desktop.key(window, 'ctrl+a')
        self.desktop.type(window, text)
        self.desktop.key(window, leave)

    def click(self, rect):
        self.desktop.click(self.main, rect)

    def expect_investments(self, records, step_name):
        self.investments = records
        expect_file(self.in_dat, records, step_name)

    def expect_loans(self, records, step_name):
        self.loans = records
        expect_file(self.ln_dat, records, step_name)

    def expect_unchanged(self, step_name):
        expect_unchanged(self.in_dat, self.investments, step_name)
        expect_unchanged(self.ln_dat, self.loans, step_name)

    def screenshot(self, name, ready=None):
        return self.desktop.screenshot(self.main, name, ready)


def opening(day):
    shot = day.screenshot('01-main-at-start', lambda png: is_bold(png, cell('FutureValue', 3)))
    expect_bold(shot, cell('FutureValue', 3), 'the blank future value of row 3')
    expect_regular(shot, cell('Payment', 3), 'the stored payment of row 3')
    step('the window opens on the investments, the blank future values in bold')
    return shot


def typical_edit(day, shot):
    """A payment typed in row 3 and left with Enter: on disk at once, the blank
    future value recomputed and shown in bold."""
    before = crop_hash(shot, cell('FutureValue', 3))
    day.edit(day.main, cell('Payment', 3), '100')
    day.expect_investments([RETIREMENT, COLLEGE, replaced(SAVINGS, payment=100.0)],
                           'payment typed in row 3')
    shot = day.screenshot('02-payment-typed-in-row-3',
                          lambda png: crop_hash(png, cell('FutureValue', 3)) != before and
                          is_bold(png, cell('FutureValue', 3)))
    if crop_hash(shot, cell('FutureValue', 3)) == before:
        raise Failure('the future value of row 3 was not recomputed')
    expect_bold(shot, cell('FutureValue', 3), 'the recomputed future value of row 3')
    expect_regular(shot, cell('Payment', 3), 'the typed payment of row 3')
    step('a payment typed in row 3 is on disk and its future value recomputed in bold')


def escape_and_tab(day):
    day.edit(day.main, cell('Desc', 1), 'Typed, then Escape', leave='Escape', replace=False)
    day.edit(day.main, cell('Years', 2), '4', leave='Tab')
    day.expect_investments([RETIREMENT, replaced(COLLEGE, years=4.0), day.investments[2]],
                           'Escape in row 1, then years typed in row 2 and left with Tab')
    shot = day.screenshot('03-escape-and-tab')
    expect_bold(shot, cell('Payment', 2), 'the recomputed payment of row 2')
    step('Escape discards the typing, Tab stores it')


def list_commands(day):
    """Add New, Copy, Delete, Move Up and Move Down, then Undo of the delete
    and of both edits. Returns nothing; the day keeps the records."""
    years_typed = replaced(COLLEGE, years=4.0)
    payment_typed = replaced(SAVINGS, payment=100.0)
    day.click(ADD_NEW)
    day.expect_investments([RETIREMENT, years_typed, payment_typed, BLANK_RECORD], 'Add New')
    day.click(cell('Sel', 2))
    day.click(COPY)
    day.expect_investments([RETIREMENT, years_typed, payment_typed, BLANK_RECORD, years_typed],
                           'Copy of row 2')
    day.screenshot('04-added-and-copied')
    step('Add New appends a blank record, Copy the selected one')

    day.click(cell('Sel', 3))
    day.click(DELETE)
    day.expect_investments([RETIREMENT, years_typed, BLANK_RECORD, years_typed],
                           'Delete of row 3')
    day.screenshot('05-row-3-deleted')
    step('Delete takes the selected record out of the file')

    day.click(cell('Sel', 2))
    day.click(MOVE_UP)
    day.expect_investments([years_typed, RETIREMENT, BLANK_RECORD, years_typed],
                           'Move Up of row 2')
    # The selection follows the moved record, now record 1.
    day.click(MOVE_DOWN)
    day.expect_investments([RETIREMENT, years_typed, BLANK_RECORD, years_typed],
                           'Move Down of the moved record')
    day.click(MOVE_DOWN)
    day.expect_investments([RETIREMENT, BLANK_RECORD, years_typed, years_typed],
                           'Move Down again')
    day.screenshot('06-moved')
    step('Move Up and Move Down swap the selected record with its neighbour')

    # Undo takes back the delete (moves leave no entry), then each edit: the
    # record as it was goes back where the edited scenario now is, following
    # it through the moves and the restored delete.
    day.click(UNDO)
    day.expect_investments([RETIREMENT, BLANK_RECORD, payment_typed, years_typed, years_typed],
                           'Undo of the delete')
    day.click(UNDO)
    day.expect_investments([RETIREMENT, BLANK_RECORD, payment_typed, COLLEGE, years_typed],
                           'Undo of the years typed, the record now 4th')
    day.click(UNDO)
    day.expect_investments([RETIREMENT, BLANK_RECORD, SAVINGS, COLLEGE, years_typed],
                           'Undo of the payment typed in record 3')
    day.screenshot('07-undone')
    step('Undo brings back the deleted record, then the values before each edit')


def loans_and_wheel(day):
    day.click(LOANS)
    day.edit(day.main, cell('Desc', 1), 'Home')
    loans = list(day.loans)
    loans[0] = replaced(loans[0], desc='Home')
    day.expect_loans(loans, 'description typed in row 1 of the loans')
    expect_unchanged(day.in_dat, day.investments, 'the investments while the loans are shown')
    shot = day.screenshot('08-loans', lambda png: is_bold(png, cell('Payment', 1)))
    expect_bold(shot, cell('Payment', 1), 'the solved payment of the first loan')
    step('Loans shows the loans list; an edit there goes to Ln.dat')

    # The wheel over the grid turns the list; row 1 then shows a later record,
    # which is the one an edit of row 1 changes.
    day.desktop.wheel(day.main, cell('Desc', 7), 1)
    day.edit(day.main, cell('Desc', 1), 'After the wheel')
    loans[3] = replaced(loans[3], desc='After the wheel')
    day.expect_loans(loans, 'row 1 edited after one notch of the wheel down')
    day.screenshot('09-wheel-down')
    day.desktop.wheel(day.main, cell('Desc', 7), -1)
    day.edit(day.main, cell('Desc', 2), 'Back at the top')
    loans[1] = replaced(loans[1], desc='Back at the top')
    day.expect_loans(loans, 'row 2 edited after one notch of the wheel up')
    step('the wheel over the grid turns the list three records a notch, both ways')


def loan_schedule(day):
    """Amortize on the first loan: Years edited there, printed, left with Exit."""
    day.click(cell('Sel', 1))
    day.click(AMORTIZE)
    schedule = day.desktop.wait_window('Loan Amortization')
    day.desktop.screenshot(schedule, '10-loan-schedule')
    day.edit(schedule, SCHEDULE_YEARS, '15')
    loans = list(day.loans)
    loans[0] = replaced(loans[0], years=15.0)
    day.expect_loans(loans, 'Years typed in the loan schedule')
    day.desktop.screenshot(schedule, '11-loan-schedule-15-years')
    day.desktop.click(schedule, SCHEDULE_PRINT)
    answer_pdf_dialogs(day.desktop, '12-loan-schedule-print')
    pdf = day.app.path('Home.pdf')
    wait_for_pdf(pdf, 'the loan schedule printed without a printer')
    shutil.copy(pdf, os.path.join(day.desktop.artifacts, '12-loan-schedule.pdf'))
    text = pdf_text(pdf)
    if text is not None and ('Home' not in text or not re.search(r'^\s*180\s', text, re.M)
                             or re.search(r'^\s*181\s', text, re.M)):
        raise Failure('the schedule PDF lacks the description or ends elsewhere than at '
                      'period 180:\n' + text[:600])
    day.desktop.click(schedule, SCHEDULE_EXIT)
    day.desktop.wait_gone('Loan Amortization')
    day.expect_unchanged('Exit of the loan schedule')
    step('the loan schedule edits Years into the file, prints to a PDF, and Exit closes it')


def new_pdfs(folder, before):
    return sorted(n for n in set(os.listdir(folder)) - before if n.endswith('.pdf'))


def list_print(day):
    """Print with no printer: the PDF, named after the list, holds it all."""
    folder = day.app.folder
    before = set(os.listdir(folder))
    day.click(PRINT)
    answer_pdf_dialogs(day.desktop, '13-list-print')
    deadline = time.monotonic() + WAIT_SECONDS
    while not new_pdfs(folder, before) and time.monotonic() < deadline:
        time.sleep(0.05)
    new = new_pdfs(folder, before)
    if len(new) != 1:
        raise Failure('printing the list made the PDF files %s' % new)
    pdf = day.app.path(new[0])
    wait_for_pdf(pdf, 'the loans list printed without a printer')
    shutil.copy(pdf, os.path.join(day.desktop.artifacts, '13-list.pdf'))
    text = pdf_text(pdf)
    if text is not None and ('Home' not in text or 'Loan 20' not in text):
        raise Failure('the list PDF lacks its first or last loan:\n' + text[:400])
    day.expect_unchanged('printing the list')
    step('Print offers a PDF without a printer; %s holds the whole list' % new[0])


def investment_schedule(day):
    day.click(INVESTMENTS)
    day.click(cell('Sel', 1))
    day.click(AMORTIZE)
    schedule = day.desktop.wait_window('Investment Amortization')
    day.desktop.screenshot(schedule, '14-investment-schedule')
    day.edit(schedule, SCHEDULE_YEARS, '2')
    investments = list(day.investments)
    investments[0] = replaced(investments[0], years=2.0)
    day.expect_investments(investments, 'Years typed in the investment schedule')
    day.desktop.screenshot(schedule, '15-investment-schedule-2-years')
    day.desktop.click(schedule, SCHEDULE_EXIT)
    day.desktop.wait_gone('Investment Amortization')
    day.screenshot('16-back-from-the-schedules')
    day.expect_unchanged('Exit of the investment schedule')
    step('the investment schedule edits Years into the file and Exit closes it')


def exit_button(day):
    day.click(EXIT)
    code = day.app.wait_exit()
    if code != 0:
        raise Failure('Exit ended quillet with status %d' % code)
    day.expect_unchanged('after Exit')
    if os.path.exists(day.app.path('.quillet.lock')):
        raise Failure('the lock file is left behind after Exit')
    step('Exit ends quillet with status 0, the files as they were, no lock left')


def the_working_day(desktop, program, work):
    """One session: the typical edit, the list commands, both lists, the
    wheel, both schedules, printing, a second copy refused, and Exit."""
    folder = os.path.join(work, 'day')
    os.mkdir(folder)
    write_list(os.path.join(folder, 'In.dat'), [RETIREMENT, COLLEGE, SAVINGS])
    write_list(os.path.join(folder, 'Ln.dat'), LOANS_LIST)
    app = Quillet(desktop, program, folder)
    try:
        day = Day(desktop, app)
        shot = opening(day)
        typical_edit(day, shot)
        escape_and_tab(day)
        list_commands(day)
        loans_and_wheel(day)
        loan_schedule(day)
        list_print(day)
        investment_schedule(day)
        second_copy_refused(desktop, program, folder, day.investments, day.loans)
        exit_button(day)
    finally:
        app.kill()


def crop_hash(png, rect):
    left, top, width, height = (pixels(v) for v in rect)
    return subprocess.run(['convert', png, '-crop', '%dx%d+%d+%d' % (width, height, left, top),
                           '+repage', '-format', '%#', 'info:'], capture_output=True, text=True,
                          check=True).stdout


def second_copy_refused(desktop, program, folder, investments, loans):
    """A second quillet in the same folder says why and ends, writing nothing."""
    second = Quillet(desktop, program, folder)
    try:
        message = desktop.wait_window('Quillet')
        desktop.screenshot(message, '17-second-copy-refused')
        desktop.answer(message, 'Quillet', 'Return')
        code = second.wait_exit()
        if code != 1:
            raise Failure('the second quillet ended with status %d, not 1' % code)
        if len(desktop.visible('Fennrow')) != 1:
            raise Failure('the second quillet showed a main window')
    finally:
        second.kill()
    expect_unchanged(os.path.join(folder, 'In.dat'), investments, 'second copy')
    expect_unchanged(os.path.join(folder, 'Ln.dat'), loans, 'second copy')
    step('a second quillet in the same folder is refused with a message and writes nothing')


def read_only_list(desktop, program, work):
    """A list file that cannot be written: shown, every change refused."""
    folder = os.path.join(work, 'read-only')
    os.mkdir(folder)
    investments = [RETIREMENT, COLLEGE, SAVINGS]
    in_dat = os.path.join(folder, 'In.dat')
    write_list(in_dat, investments)
    write_list(os.path.join(folder, 'Ln.dat'), LOANS_LIST[:2])
    user = None
    how = 'chattr +i'
    immutable = subprocess.run(['chattr', '+i', in_dat], capture_output=True).returncode == 0 \
        if shutil.which('chattr') else False
    if not immutable:
        if os.geteuid() == 0 and shutil.which('setpriv'):
            # An unprivileged user, for whom a file without write permission
            # is read-only indeed.
            user, how = 'nobody', 'a file of mode 0444 opened as nobody'
            os.chmod(folder, 0o777)
            os.chmod(in_dat, 0o444)
            os.chmod(os.path.join(folder, 'Ln.dat'), 0o666)
        elif os.geteuid() != 0:
            how = 'a file of mode 0444'
            os.chmod(in_dat, 0o444)
        else:
            print('SKIP read-only list: neither chattr +i nor setpriv works here')
            return
    app = Quillet(desktop, program, folder, user)
    try:
        message = desktop.wait_window('Quillet')
        desktop.screenshot(message, '18-read-only-at-start')
        desktop.answer(message, 'Quillet', 'Return')
        main = app.main_window()
        desktop.click(main, cell('Payment', 1))
        desktop.key(main, 'ctrl+a')
        desktop.type(main, '250')
        desktop.key(main, 'Return')
        message = desktop.wait_window('Quillet')
        desktop.screenshot(message, '19-read-only-edit-refused')
        desktop.answer(message, 'Quillet', 'Return')
        expect_unchanged(in_dat, investments, 'a payment typed into a read-only list')
        desktop.click(main, cell('Sel', 2))
        desktop.click(main, DELETE)
        message = desktop.wait_window('Quillet')
        desktop.screenshot(message, '20-read-only-delete-refused')
        desktop.answer(message, 'Quillet', 'Return')
        expect_unchanged(in_dat, investments, 'Delete in a read-only list')
        desktop.screenshot(main, '21-read-only-list')
        desktop.click(main, EXIT)
        code = app.wait_exit()
        if code != 0:
            raise Failure('Exit ended quillet with status %d' % code)
        expect_unchanged(in_dat, investments, 'a read-only list after Exit')
        step('a read-only list (%s) is shown, says so, and refuses edits and deletes' % how)
    finally:
        app.kill()
        if immutable:
            subprocess.run(['chattr', '-i', in_dat])


# ------------------------------------------------------------------ main

STARTED = time.monotonic()


def step(text):
    print('PASS %5.1f s  %s' % (time.monotonic() - STARTED, text), flush=True)


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    program, artifacts = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    missing = [tool for tool in ('Xvfb', 'xdotool') if not shutil.which(tool)]
    if missing:
        print('SKIP: %s not installed (scripts/setup.sh installs them)' % ', '.join(missing))
        return 77
    missing = [tool for tool in ('import', 'convert', 'identify') if not shutil.which(tool)]
    if missing:
        print('FAIL: ImageMagick (%s) is needed for the screenshots; scripts/setup.sh installs it'
              % ', '.join(missing))
        return 1
    shutil.rmtree(artifacts, ignore_errors=True)
    os.makedirs(artifacts)
    work = tempfile.mkdtemp(prefix='quillet-e2e-')
    os.chmod(work, 0o755)
    display = Display(work)
    desktop = Desktop(display, artifacts)
    try:
        the_working_day(desktop, program, work)
        read_only_list(desktop, program, work)
    except Failure as failure:
        print('FAIL %s' % failure, flush=True)
        for log in sorted(f for f in os.listdir(work) if f.endswith('.log')):
            with open(os.path.join(work, log), errors='replace') as f:
                text = f.read().strip()
            if text:
                print('--- %s\n%s' % (log, text[-2000:]))
        print('screenshots in %s' % artifacts)
        return 1
    finally:
        display.close()
        subprocess.run(['chattr', '-R', '-i', work], capture_output=True)
        shutil.rmtree(work, ignore_errors=True)
    print('all scenarios passed in %.1f s; screenshots in %s' % (time.monotonic() - STARTED,
                                                                  artifacts))
    return 0


if __name__ == '__main__':
    sys.exit(main())
