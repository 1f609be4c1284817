#!/usr/bin/perl
# Writes the source of the installer, for wixl: installer.pl VERSION COMPANY ROOT BUILD MODULE CONTENT > tavlcom.wxs
# What DllRegisterServer would write is taken from where it takes it: the registration scripts that the build makes of the list
# of classes, and the interface definition. ROOT is the folder of the sources, BUILD that of the build, MODULE the file to install; each folder in
# CONTENT becomes a feature. All are relative to where wixl runs.
use strict;
use warnings;
use Digest::SHA qw(sha1);
use FindBin;
use lib $FindBin::Bin;
use Registration;

die "usage: see the head of $0\n" unless @ARGV == 6;
my ($version, $company, $root, $build, $module, $content) = @ARGV;

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

my @rows = Registration::of_classes($build);
my @library = Registration::of_library($root);
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

# The icons are those of the windows.
my %icon = Registration::slurp("$root/src/legacy/legacy_resources.h") =~ /#define (IDI_\w+) (\d+)/g;
my $pkiobj = (map { $_->[0] =~ /\\CLSID\\(\{[^\\]*\})\\VersionIndependentProgID$/ && $_->[2] =~ /\.pkiobj$/ ? $1 : () } @rows)[0];
# The name by which the entry creates the object that opens a file.
my @open = (["Software\\Classes\\PKI.pkiobj\\CLSID", undef, $pkiobj]);
for ([p7s => 'Signed file', 'IDI_VERIFICATION'], [p7e => 'Encrypted file', 'IDI_ENCRYPTION'], [p7a => 'Signed and encrypted file', 'IDI_CERTIFICATE']) {
  my ($extension, $name, $icon) = @$_;
  my $type = "Software\\Classes\\TAVL.$extension";
  # The entry takes the rest of the command line as it stands: quotes would be a part of the path.
  push @open, ["Software\\Classes\\.$extension", undef, "TAVL.$extension"], [$type, undef, $name], ["$type\\DefaultIcon", undef, "%MODULE%,-$icon{$icon}"],
    ["$type\\shell\\open\\command", undef, '"[System64Folder]rundll32.exe" "%MODULE%",FileOpen %1'];
}

# A host of 32 bits cannot load the module; it reaches the classes in a process of the platform's that does.
my $application = '{' . identifier('surrogate') . '}';
my @surrogate = (["Software\\Classes\\AppID\\$application", undef, 'tavlcom'], ["Software\\Classes\\AppID\\$application", 'DllSurrogate', '']);
push @surrogate, map { [$_, 'AppID', $application] } grep { /\\CLSID\\\{[^\\]*\}$/ } map { defined $_->[1] ? () : $_->[0] } @rows;

# What lies in CONTENT, folder by folder: directories, and a feature for each folder at its top.
my $number = 0;
sub directory {
  my ($path, $indent) = @_;
  my ($text, @ids) = ('');
  for my $entry (sort glob "$path/*") {
    my $name = $entry =~ s{.*/}{}r;
    my $id = 'Content' . ++$number;
    if (-d $entry) {
      my ($inner, @inner) = directory($entry, "$indent  ");
      $text .= qq($indent<Directory Id="$id" Name="@{[xml($name)]}">\n$inner$indent</Directory>\n);
      push @ids, @inner;
    } else {
      my $key = identifier($entry =~ s{^\Q$content\E}{}r);
      $text .= qq($indent<Component Id="$id" Guid="$key" Win64="yes"><File Id="File$id" Name="@{[xml($name)]}" Source="@{[xml($entry)]}" KeyPath="yes"/></Component>\n);
      push @ids, $id;
    }
  }
  return ($text, @ids);
}
my ($directories, $features) = ('', '');
for my $folder (sort grep { -d } glob "$content/*") {
  my $name = $folder =~ s{.*/}{}r;
  my ($text, @ids) = directory($folder, ' ' x 12);
  $directories .= qq(          <Directory Id="@{[uc $name]}" Name="$name">\n$text          </Directory>\n);
  $features .= qq(    <Feature Id="@{[ucfirst $name]}" Title="@{[ucfirst $name]}" Level="1">\n@{[map { qq(      <ComponentRef Id="$_"/>\n) } @ids]}    </Feature>\n);
}
my @parts = (
  $component->('Module', ' Win64="yes"', $file->('tavlcom.dll', $module), registry(@rows)),
  $component->('Interfaces32', ' Win64="no"', registry(@rows32)),
  $component->('OpenFiles', ' Win64="yes"', registry(@open)),
  $component->('Surrogate', ' Win64="yes"', registry(@surrogate)),
  $component->('Surrogate32', ' Win64="no"', registry(@surrogate)));

print <<"XML";
<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="*" Name="tavlcom" Language="1033" Codepage="1252" Version="$version" Manufacturer="@{[xml($company)]}" UpgradeCode="@{[identifier('upgrade')]}">
    <Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine" Description="tavlcom $version"/>
    <MajorUpgrade DowngradeErrorMessage="A newer version of tavlcom is installed."/>
    <Media Id="1" Cabinet="files.cab" EmbedCab="yes"/>
    <Directory Id="TARGETDIR" Name="SourceDir">
      <Directory Id="ProgramFiles64Folder">
        <Directory Id="INSTALLFOLDER" Name="tavlcom">
@{[join '', @parts]}$directories        </Directory>
      </Directory>
    </Directory>
    <Feature Id="Server" Title="Automation server" Level="1" Absent="disallow">
      <ComponentRef Id="Module"/>
      <ComponentRef Id="Interfaces32"/>
    </Feature>
$features    <Feature Id="OpenFiles" Title="Open protected files" Description="Needs a profile with the name My." Level="1000">
      <ComponentRef Id="OpenFiles"/>
    </Feature>
    <Feature Id="Hosts32" Title="Hosts of 32 bits" Description="Through the platform's surrogate process. Not proven." Level="1000">
      <ComponentRef Id="Surrogate"/>
      <ComponentRef Id="Surrogate32"/>
    </Feature>
  </Product>
</Wix>
XML
