#!/usr/bin/perl
# Writes the source of the installer, for wixl: installer.pl VERSION ROOT BUILD > tavlcom.wxs
# What DllRegisterServer would write is taken from where it takes it: the registration scripts that the build makes of the list
# of classes, and the interface definition. ROOT is the folder of the sources, BUILD that of the build; both are relative to where wixl
# runs.
use strict;
use warnings;
use Digest::SHA qw(sha1);

die "usage: see the head of $0\n" unless @ARGV == 3;
my ($version, $root, $build) = @ARGV;

sub slurp { my ($path) = @_; local (@ARGV, $/) = $path; my $text = <>; $text =~ s/\r//g; return $text }
sub xml { my ($text) = @_; my %code = ('&' => '&amp;', '<' => '&lt;', '"' => '&quot;'); return $text =~ s/([&<"])/$code{$1}/gr }

# The identifier of a part is the same in every version: an upgrade knows by it what it replaces.
my $space = "\x8e\x31\x0a\x5d\x47\x92\x4c\x0b\x9d\x27\x63\x1f\xa2\x70\xb6\x14";
sub identifier {
  my ($name) = @_;
  my $bytes = substr sha1($space . $name), 0, 16;
  substr($bytes, 6, 1) = chr(ord(substr $bytes, 6, 1) & 0x0F | 0x50);
  substr($bytes, 8, 1) = chr(ord(substr $bytes, 8, 1) & 0x3F | 0x80);
  return uc join '-', unpack 'H8 H4 H4 H4 H12', $bytes;
}

# A row: key, name of the value (undef for the default value), text. A key without values has the name '*': it goes with
# the product.
my @rows;

# Takes the keys from a registration script: `name = s 'text' { ... }`, `val name = s 'text'`.
sub read_script {
  my ($path) = @_;
  my @tokens = slurp($path) =~ /'((?:[^']|'')*)'|([^\s']+)/g;
  my @words;
  while (@tokens) {
    my ($quoted, $plain) = splice @tokens, 0, 2;
    push @words, defined $quoted ? "'$quoted" : $plain;
  }
  shift @words;  # HKCR
  read_keys(\@words, 'Software\\Classes');
  die "$path: @words\n" if @words;
}

sub name_of { my ($word) = @_; return $word =~ s/^'//r }

sub read_keys {
  my ($words, $parent) = @_;
  die "a key has no content: $parent\n" if shift @$words ne '{';
  while ((my $word = shift @$words) ne '}') {
    if ($word eq 'val') {
      my $name = name_of(shift @$words);
      die "$parent: $name is no text\n" if "@$words[0, 1]" ne '= s';
      push @rows, [$parent, $name, name_of((splice @$words, 0, 3)[2])];
      next;
    }
    my $is_shared = $word eq 'NoRemove';
    $word = shift @$words if $is_shared || $word eq 'ForceRemove';
    my $key = "$parent\\" . name_of($word);
    if (@$words && $words->[0] eq '=') {
      push @rows, [$key, undef, name_of((splice @$words, 0, 3)[2])];
    } elsif (!@$words || $words->[0] ne '{') {
      push @rows, [$key, '*', undef];
    }
    read_keys($words, $key) if @$words && $words->[0] eq '{';
  }
}

# What the registration of a type library writes: the library, and every dual interface. The flag states that it has a file.
sub read_library {
  my ($path) = @_;
  my $text = slurp($path);
  my ($id, $number, $help) = $text =~ /uuid\(([-0-9A-F]{36})\),\s*version\((\d+\.\d+)\),\s*helpstring\("([^"]*)"\)[^{]*\]\s*library/ or die "$path: no library\n";
  my @library;
  my $key = "TypeLib\\{$id}\\$number";
  push @library, [$key, undef, $help], ["$key\\0\\win64", undef, '%MODULE%'], ["$key\\FLAGS", undef, '8'],
    ["$key\\HELPDIR", undef, '%FOLDER%'];
  while ($text =~ /\[([^\]]*uuid\(([-0-9A-F]{36})\)[^\]]*)\]\s*interface (\w+) : IDispatch/g) {
    my ($interface, $name) = ("Interface\\{$2}", $3);
    my $marshaler = '{00020424-0000-0000-C000-000000000046}';
    push @library, [$interface, undef, $name], ["$interface\\ProxyStubClsid", undef, $marshaler], ["$interface\\ProxyStubClsid32", undef, $marshaler],
      ["$interface\\TypeLib", undef, "{$id}"], ["$interface\\TypeLib", 'Version', $number];
  }
  return @library;
}

read_script($_) for sort glob "$build/generated/registration/*.rgs";
my @library = read_library("$root/src/module/quivocom.idl");
push @rows, map { ["Software\\Classes\\$_->[0]", @$_[1, 2]] } @library;
# Callers of 32 bits find the library and the interfaces where theirs are.
my @rows32 = map { ["Software\\Classes\\$_->[0]", @$_[1, 2]] } @library;

sub registry {
  my $text = '';
  for my $row (@_) {
    my ($key, $name, $value) = @$row;
    $value //= '';
    $value =~ s/%MODULE%/[#tavlcom.dll]/;
    $value =~ s/%FOLDER%/[INSTALLFOLDER]/;
    my $named = defined $name ? sprintf ' Name="%s"', xml($name) : '';
    $text .= sprintf qq(        <RegistryValue Root="HKLM" Key="%s"%s Type="string" Value="%s"/>\n), xml($key), $named, xml($value);
  }
  return $text;
}

my $component = sub { my ($id, $more, @content) = @_; return sprintf qq(      <Component Id="%s" Guid="%s"%s>\n%s      </Component>\n), $id, identifier($id), $more, join '', @content };
my $file = sub { my ($id, $path) = @_; return sprintf qq(        <File Id="%s" Name="%s" Source="%s" KeyPath="yes"/>\n), $id, $path =~ s{.*/}{}r, xml($path) };

my @open;
for ([p7s => 'Signed file'], [p7e => 'Encrypted file'], [p7a => 'Signed and encrypted file']) {
  my ($extension, $name) = @$_;
  my $type = "Software\\Classes\\TAVL.$extension";
  # The entry takes the rest of the command line as it stands: quotes would be a part of the path.
  push @open, ["Software\\Classes\\.$extension", undef, "TAVL.$extension"], [$type, undef, $name], ["$type\\DefaultIcon", undef, "%MODULE%,0"],
    ["$type\\shell\\open\\command", undef, '"[System64Folder]rundll32.exe" "%MODULE%",FileOpen %1'];
}

my @documents = map { [$_, "$root/$_"] } qw(README.md CHANGELOG.md docs/behaviour.md docs/trust.md);
my $files_of = sub { map { [s{.*/}{}r, $_] } sort grep { -f } glob "$root/$_[0]/*" };
my @rooms = map { s{.*/}{}r } sort grep { -d } glob "$root/samples/*";
my $number = 0;
my @parts = (
  $component->('Module', ' Win64="yes"', $file->('tavlcom.dll', "$build/bin/tavlcom.dll"), registry(@rows)),
  $component->('Interfaces32', ' Win64="no"', registry(@rows32)),
  $component->('OpenFiles', ' Win64="yes"', registry(@open)));
my %folder;
for (['documents', @documents], ['samples', $files_of->('samples')], map { [$_, $files_of->("samples/$_")] } @rooms) {
  my ($kind, @files) = @$_;
  $folder{$kind} = '';
  $folder{$kind} .= $component->("$kind.$_->[0]" =~ s{[^\w.]}{_}gr, ' Win64="yes"', $file->("$kind." . ++$number, $_->[1])) for @files;
}
my $references = sub { join '', map { qq(      <ComponentRef Id="$_"/>\n) } $_[0] =~ /<Component Id="([^"]+)"/g };

print <<"XML";
<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="*" Name="tavlcom" Language="1033" Codepage="1252" Version="$version" Manufacturer="tavlcom" UpgradeCode="@{[identifier('upgrade')]}">
    <Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine" Description="tavlcom $version"/>
    <MajorUpgrade DowngradeErrorMessage="A newer version of tavlcom is installed."/>
    <Media Id="1" Cabinet="files.cab" EmbedCab="yes"/>
    <Directory Id="TARGETDIR" Name="SourceDir">
      <Directory Id="ProgramFiles64Folder">
        <Directory Id="INSTALLFOLDER" Name="tavlcom">
@{[join '', @parts]}          <Directory Id="DOCUMENTS" Name="documents">
$folder{documents}          </Directory>
          <Directory Id="SAMPLES" Name="samples">
$folder{samples}@{[join '', map { qq(            <Directory Id="\U@{[tr/A-Za-z0-9/_/cr]}\E" Name="$_">\n$folder{$_}            </Directory>\n) } @rooms]}          </Directory>
        </Directory>
      </Directory>
    </Directory>
    <Feature Id="Server" Title="Automation server" Level="1" Absent="disallow">
      <ComponentRef Id="Module"/>
      <ComponentRef Id="Interfaces32"/>
    </Feature>
    <Feature Id="Documents" Title="Documents" Level="1">
@{[$references->($folder{documents})]}    </Feature>
    <Feature Id="Samples" Title="Samples" Level="1">
@{[$references->(join '', @folder{'samples', @rooms})]}    </Feature>
    <Feature Id="OpenFiles" Title="Open protected files" Description="Needs a profile with the name My." Level="1000">
      <ComponentRef Id="OpenFiles"/>
    </Feature>
  </Product>
</Wix>
XML
