package Registration;
# What DllRegisterServer writes, as rows for those who write the same by other means: key, name of the value (undef for the
# default value), text. A key without values has the name '*'. Keys are relative to HKEY_LOCAL_MACHINE. In texts %MODULE% is the
# path of the module, %FOLDER% its folder.
# The rows are taken from where DllRegisterServer takes them: the registration scripts that the build makes of the list of
# classes, and the interface definition.
use strict;
use warnings;

sub slurp { my ($path) = @_; local (@ARGV, $/) = $path; my $text = <>; $text =~ s/\r//g; return $text }

# The rows of every class. BUILD is the folder of the build.
sub of_classes {
  my ($build) = @_;
  my @scripts = sort glob "$build/generated/registration/*.rgs";
  die "$build: no registration scripts\n" unless @scripts;
  return map { read_script($_) } @scripts;
}

# `name = s 'text' { ... }`, `val name = s 'text'`
sub read_script {
  my ($path) = @_;
  my @tokens = slurp($path) =~ /'((?:[^']|'')*)'|([^\s']+)/g;
  my @words;
  while (@tokens) {
    my ($quoted, $plain) = splice @tokens, 0, 2;
    push @words, defined $quoted ? "'$quoted" : $plain;
  }
  shift @words;  # HKCR
  my @rows;
  read_keys(\@words, 'Software\\Classes', \@rows);
  die "$path: @words\n" if @words;
  return @rows;
}

sub name_of { my ($word) = @_; return $word =~ s/^'//r }

sub read_keys {
  my ($words, $parent, $rows) = @_;
  die "a key has no content: $parent\n" if shift @$words ne '{';
  while ((my $word = shift @$words) ne '}') {
    if ($word eq 'val') {
      my $name = name_of(shift @$words);
      die "$parent: $name is no text\n" if "@$words[0, 1]" ne '= s';
      push @$rows, [$parent, $name, name_of((splice @$words, 0, 3)[2])];
      next;
    }
    my $is_shared = $word eq 'NoRemove';
    $word = shift @$words if $is_shared || $word eq 'ForceRemove';
    my $key = "$parent\\" . name_of($word);
    if (@$words && $words->[0] eq '=') {
      push @$rows, [$key, undef, name_of((splice @$words, 0, 3)[2])];
    } elsif (!@$words || $words->[0] ne '{') {
      push @$rows, [$key, '*', undef];
    }
    read_keys($words, $key, $rows) if @$words && $words->[0] eq '{';
  }
}

# The type library: a hash of its id, version and description, and of its dual interfaces, [identifier, name] each. ROOT is the folder of the sources.
sub library {
  my ($root) = @_;
  my $path = "$root/src/module/quivocom.idl";
  my $text = slurp($path);
  my ($id, $number, $help) = $text =~ /uuid\(([-0-9A-F]{36})\),\s*version\((\d+\.\d+)\),\s*helpstring\("([^"]*)"\)[^{]*\]\s*library/ or die "$path: no library\n";
  my @interfaces;
  push @interfaces, ["{$2}", $3] while $text =~ /\[([^\]]*uuid\(([-0-9A-F]{36})\)[^\]]*)\]\s*interface (\w+) : IDispatch/g;
  return (id => "{$id}", version => $number, description => $help, interfaces => \@interfaces);
}

# The platform's marshaler of interfaces that a type library describes.
use constant MARSHALER => '{00020424-0000-0000-C000-000000000046}';

# What the registration of the type library writes, below Software\Classes. The flag states that it has a file.
sub of_library {
  my %library = library(@_);
  my $key = "TypeLib\\$library{id}\\$library{version}";
  my @rows = ([$key, undef, $library{description}], ["$key\\0\\win64", undef, '%MODULE%'], ["$key\\FLAGS", undef, '8'],
    ["$key\\HELPDIR", undef, '%FOLDER%']);
  for (@{$library{interfaces}}) {
    my ($iid, $name) = @$_;
    my $interface = "Interface\\$iid";
    push @rows, [$interface, undef, $name], ["$interface\\ProxyStubClsid", undef, MARSHALER], ["$interface\\ProxyStubClsid32", undef, MARSHALER],
      ["$interface\\TypeLib", undef, $library{id}], ["$interface\\TypeLib", 'Version', $library{version}];
  }
  return @rows;
}

1;
