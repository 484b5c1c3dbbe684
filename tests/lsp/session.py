"""Talks to a language server and compares what it answers: session.py LANGUAGE.MD COMMAND..."""
import json, os, random, re, subprocess, sys, tempfile

server = None
shown = {}  # diagnostics by file


def start():
    global server
    server = subprocess.Popen(sys.argv[2:] + ['lsp'], stdin=subprocess.PIPE, stdout=subprocess.PIPE)


def send(body, header=b'Content-Length: %d\r\n\r\n'):
    server.stdin.write(header % len(body) + body if b'%' in header else header + body)
    server.stdin.flush()


def receive():
    """The next answer; diagnostics are noted on the way."""
    while True:
        length = int(server.stdout.readline().split(b':')[1])
        server.stdout.readline()
        message = json.loads(server.stdout.read(length).replace(b'Z:/', b'/'))  # Windows' name of the root
        if 'id' in message:
            return message
        params = message['params']
        shown[params['uri']] = [(span(each['range']), each['message']) for each in params['diagnostics']]


def span(r):
    return '%d:%d-%d:%d' % tuple(r[end][part] for end in ('start', 'end') for part in ('line', 'character'))


def notify(method, **params):
    send(json.dumps({'jsonrpc': '2.0', 'method': method, 'params': params}).encode())


def ask(method, uri='', place=(0, 0), **params):
    params |= {'textDocument': {'uri': uri}, 'position': {'line': place[0], 'character': place[1]}}
    if method[0] != '/':
        params['method'] = method
    request = {'jsonrpc': '2.0', 'id': 'x', 'method': 'textDocument' + method if method[0] == '/' else method}
    send(json.dumps(request | {'params': params}).encode())
    answer = receive()
    return answer['result'] if 'result' in answer else answer['error']['code']


def open_text(uri, text):
    notify('textDocument/didOpen', textDocument={'uri': uri, 'languageId': 'vrs', 'version': 1, 'text': text})


def change(uri, *changes):
    notify('textDocument/didChange', textDocument={'uri': uri, 'version': 2}, contentChanges=changes)


def expect(got, wanted):
    assert got == wanted, 'got\n%r\nwanted\n%r' % (got, wanted)


folder = os.path.realpath(tempfile.mkdtemp())
main, lib, other = ('file://%s/%s.vrs' % (folder, name) for name in ('main', 'lib', 'other'))

# Messages that are none, or come at a wrong time.
start()
expect(ask('/hover', main), -32002)
notify('textDocument/didOpen')
expect(ask('initialize')['serverInfo'], {'name': 'vrn'})
for body, code in ((b'{', -32700), (b'"\xff"', -32700), (b'[' * 100000, -32700), (b'[' * 9999 + b']' * 9999, -32600),
                   (b'7', -32600), (b'{"id":1}', -32600), (b'{"id":[],"method":"x"}', -32600),
                   (b'{"id":1,"method":"x","params":3}', -32600), (b'{"id":1,"method":"x"}', -32601),
                   (b'{"id":1,"method":"textDocument/hover"}', -32602), (b'{"id":1,"method":"initialize"}', -32600)):
    send(body)
    expect((body[:40], receive()['error']['code']), (body[:40], code))
send(b'{"id":1,"method":"x"}', b'nonsense' * 999 + b'\r\n\r\ncontent-length: x\nContent-Length: x\r\nContent-Length: %d\r\n\r\n')
expect(receive()['error']['code'], -32601)

# A document, and one that it includes.
open(folder + '/lib.vrs', 'w').write('helper(n) { n * 2 }\n\t1 % 2;\n')
text = '''#include "lib" "nowhere"
#define SIZE 12 + 3
add(a, b) {\r\n\tinner(x) { x + a }
\tsum = "\U0001F600" + clamp(a, (b), b); sum
}
total = add(SIZE, helper(2));\r\t"\U0001F600"; 1e; add = total
'''
nowhere = [('0:15-0:24', 'File not found: nowhere.vrs')]
exponent = [('7:7-7:9', 'Malformed exponent in numeric literal')]
in_lib = 'Invalid binary operator \'%\''
operand = [('0:9-0:14', folder + '/lib.vrs:2:6: ' + in_lib)]
open_text(main, text)
outline = [(each['name'], each['kind'], span(each['range']), [part['name'] for part in each.get('children', [])])
           for each in ask('/documentSymbol', main)]
expect(outline, [('SIZE', 14, '1:8-1:19', []), ('add', 12, '2:0-5:1', ['inner']), ('total', 13, '6:0-6:5', [])])
expect(shown[main], operand + nowhere + exponent)
open_text(lib, 'helper(n) { n }\n\t1 % 2;\n')
expect((ask('/hover', main, (7, 12))['contents']['value'], shown[lib]), ('```vrs\nadd(a, b)\n```\n', [('1:3-1:4', in_lib)]))
change(lib, {'range': {'start': {'line': 1, 'character': 3}, 'end': {'line': 1, 'character': 99}}, 'text': '+ 2;'})
expect((ask('/definition', main, (0, 10))['uri'], shown[lib], shown[main]), (lib, [], nowhere + exponent))
places = {(6, 22): (lib, '0:0-0:6'), (4, 20): (main, '2:4-2:5'), (3, 16): (main, '2:4-2:5'), (3, 12): (main, '3:7-3:8'),
          (6, 14): (main, '1:8-1:12'), (4, 33): (main, '4:1-4:4'), (7, 22): (main, '6:0-6:5')}
expect({at: (found['uri'], span(found['range'])) for at in places for found in [ask('/definition', main, at)]}, places)
help = ask('/signatureHelp', main, (4, 28))
expect((help['signatures'][0]['label'], help['activeParameter']), ('clamp(x, low, high)', 2))
expect({'SIZE', 'a', 'x', 'sum', 'inner', 'helper', 'total', 'clamp', 'if'} -
       {each['label'] for each in ask('/completion', main, (4, 1))}, {'x'})
expect(ask('/completion', main, (0, 12)), [])
change(main, {'text': '"\nlater(n) { }\nlater(1);'})
expect((span(ask('/definition', main, (2, 2))['range']), shown[main]), ('1:0-1:5', [('0:0-0:1', 'unterminated string')]))

# The table of built-in functions.
rows = re.findall(r'^\| `(\w+)(\(.*\))` \| .* \| (.*) \| (.*) \|$', open(sys.argv[1]).read(), re.M)
change(main, {'text': ''})
expect([each['detail'] for each in ask('/completion', main) if each['kind'] == 3], sorted(row[0] + row[1] for row in rows))
for name, signature, result, text in rows:
    change(main, {'text': name})
    expect(ask('/hover', main)['contents']['value'], '```vrs\n%s%s\n```\n%s: %s' % (name, signature, result, text))

# Edits by chance lead where the whole text leads.
chance = random.Random(1)
pieces = ['"', "'''", '/*', '*/', '//', '{', '}', '(', ')', '[', ';', ',', '=', '+ 1', 'add', 'x', ' ', '\t', '\n', '\r', '\r\n', '1e',
          '\U0001F600', 'é', '#define x add\n', '#include "lib"\n', 'add(x, y) { x + y }\n', 'print(x);\n', '#', 'if', '\\', '\0']
for _ in range(100):
    text = ''.join(chance.choices(pieces, k=20))
    open_text(other, text)
    for _ in range(20):
        lines = re.split('(\r\n|\r|\n)', text)
        ends = sorted((chance.randrange(0, len(lines), 2) for _ in 'be'))
        begins = [sum(map(len, lines[:end])) for end in ends]
        columns = [chance.randint(0, len(lines[end])) for end in ends]
        columns.sort() if ends[0] == ends[1] else None
        places = [{'line': end // 2, 'character': len(lines[end][:column].encode('utf-16-le')) // 2}
                  for end, column in zip(ends, columns)]
        piece = ''.join(chance.choices(pieces, k=chance.randint(0, 3)))
        text = text[:begins[0] + columns[0]] + piece + text[begins[1] + columns[1]:]
        change(other, {'range': {'start': places[0], 'end': places[1]}, 'text': piece})
        method = chance.choice(['/hover', '/definition', '/signatureHelp', '/completion', '/documentSymbol'])
        assert not isinstance(ask(method, other, (places[0]['line'], places[0]['character'])), int), method
    edited = shown[other]
    notify('textDocument/didClose', textDocument={'uri': other})
    open_text(other, text)
    ask('/hover', other)
    expect((text, edited), (text, shown[other]))

expect(ask('shutdown'), None)
notify('exit')
expect(server.wait(), 0)
start()
send(b'', b'Content-Length: 99999999999999999999\r\n\r\n')
server.stdin.close()
expect(server.wait(), 1)
